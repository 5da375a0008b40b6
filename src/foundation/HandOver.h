#pragma once

#if defined(TVNMATH_THREAD_SANITIZED)
#    include <sanitizer/tsan_interface.h>
#endif

namespace Tervane::Math::Detail {

/// Tells the thread sanitizer what it cannot see in the parallel runtime, which is not built with it: what
/// was written before a range is handed over is seen by those who share in it, and what they write is seen
/// when the range is taken back. Nothing in other builds.
class HandOver {
public:
#if defined(TVNMATH_THREAD_SANITIZED)
    explicit HandOver(void const* range) : _range(const_cast<void*>(range)) {
        __tsan_release(_range);
    }
    HandOver(HandOver const&) = default;
    HandOver& operator=(HandOver const&) = delete;
    ~HandOver() {
        __tsan_acquire(_range);
    }

    /// Held by a thread as long as it works on its share.
    class Share {
    public:
        explicit Share(HandOver const& handOver) : _range(handOver._range) { __tsan_acquire(_range); }
        Share(Share const&) = delete;
        Share& operator=(Share const&) = delete;
        ~Share() { __tsan_release(_range); }

    private:
        void* _range;
    };

private:
    void* _range;
#else
    explicit HandOver(void const* /*range*/) {}

    struct Share {
        explicit Share(HandOver const& /*handOver*/) {}
    };
#endif
};

} // namespace Tervane::Math::Detail

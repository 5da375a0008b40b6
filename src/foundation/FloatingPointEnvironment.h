#pragma once

#include <xmmintrin.h>

#include <cstdint>

namespace Tervane::Math::Detail {

/// How a thread computes: the rounding mode, flush-to-zero, denormals-are-zero and which exceptions trap, of
/// the vector unit, and the same of the x87 unit, which long double uses.
///
/// Each thread has its own. Elements must come out alike whichever thread computes them, so a thread that
/// works for another one borrows the other's.
class FloatingPointEnvironment {
public:
    static FloatingPointEnvironment ofThisThread() noexcept {
        return {_mm_getcsr() & ~exceptionFlags, x87Control()};
    }

    /// Puts this thread into the environment for as long as it lives, and back into its own then.
    class Borrowed {
    public:
        explicit Borrowed(FloatingPointEnvironment const& environment) noexcept;
        ~Borrowed();

        Borrowed(Borrowed const&) = delete;
        Borrowed& operator=(Borrowed const&) = delete;

        /// The flags of the vector unit's exceptions that were raised meanwhile.
        std::uint32_t raisedExceptions() const noexcept { return _mm_getcsr() & exceptionFlags; }

    private:
        std::uint32_t _ownVectorState;
        std::uint16_t _ownX87Control;
    };

    /// The flags of the vector unit's exceptions that have been raised on this thread.
    static std::uint32_t raisedExceptions() noexcept { return _mm_getcsr() & exceptionFlags; }

    /// Puts this thread into the environment for good, with exactly these flags raised. None of them traps.
    void install(std::uint32_t raisedExceptions) const noexcept {
        setVectorState(_vectorControl | raisedExceptions);
        setX87Control(_x87Control);
    }

private:
    static constexpr std::uint32_t exceptionFlags = _MM_EXCEPT_MASK;

    FloatingPointEnvironment(std::uint32_t vectorControl, std::uint16_t x87Control) noexcept
        : _vectorControl(vectorControl), _x87Control(x87Control) {}

    static std::uint16_t x87Control() noexcept {
        std::uint16_t control;
        asm volatile("fnstcw %0" : "=m"(control));
        return control;
    }

    // Most often there is nothing to change, and loading stops the processor for some cycles.
    static void setVectorState(std::uint32_t state) noexcept {
        if (_mm_getcsr() != state)
            _mm_setcsr(state);
    }

    // A flag that is still raised would trap at the next instruction when its exception is unmasked.
    static void setX87Control(std::uint16_t control) noexcept {
        if (x87Control() != control)
            asm volatile("fnclex\n\tfldcw %0" : : "m"(control));
    }

    std::uint32_t _vectorControl;
    std::uint16_t _x87Control;
};

inline FloatingPointEnvironment::Borrowed::Borrowed(FloatingPointEnvironment const& environment) noexcept
    : _ownVectorState(_mm_getcsr()), _ownX87Control(x87Control()) {
    setVectorState(environment._vectorControl);
    setX87Control(environment._x87Control);
}

inline FloatingPointEnvironment::Borrowed::~Borrowed() {
    setVectorState(_ownVectorState);
    setX87Control(_ownX87Control);
}

} // namespace Tervane::Math::Detail

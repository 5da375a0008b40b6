// Highway compiles this file once for each instruction set, by including it again. Its headers alone are
// used, nothing of its libraries: so the choice among the instruction sets is made here, the headers' checks
// are left out, and what they still refer to is defined here.
#include "functions/KeySort.h"

// Of two generations of vector instructions, without the extensions of theirs that no sort needs. What is
// older has no advantage over the standard sort that would be worth its code.
#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_SSE4)
#define HWY_DISABLE_PCLMUL_AES
#define HWY_DISABLE_F16C
#define HWY_IS_DEBUG_BUILD 0

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "functions/KeySort.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#if HWY_TARGET == HWY_AVX2 || HWY_TARGET == HWY_AVX3

#    include <hwy/contrib/sort/traits-inl.h>
#    include <hwy/contrib/sort/vqsort-inl.h>

HWY_BEFORE_NAMESPACE();

namespace Tervane::Math::Detail::HWY_NAMESPACE {

inline void sortKeys(std::int64_t* keys, std::size_t n) noexcept {
    using namespace hwy::HWY_NAMESPACE;
    SortTag<std::int64_t> const tag;
    detail::SharedTraits<detail::TraitsLane<detail::OrderAscending<std::int64_t>>> const ascending;
    using Constants = hwy::SortConstants;
    if (n <= Constants::BaseCaseNum(Lanes(tag))) {
        // What Sort() comes to then, but for the storage that it clears first: a tenth of the time that 16
        // keys take.
        HWY_ALIGN std::int64_t buffer[Constants::BufNum<std::int64_t>(HWY_LANES(std::int64_t))];
        detail::BaseCase(tag, ascending, keys, keys + n, n, buffer);
    } else {
        Sort(tag, ascending, keys, n, static_cast<std::int64_t*>(nullptr));
    }
}

} // namespace Tervane::Math::Detail::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#endif

#if HWY_ONCE

#    include <cstring>

/// Where the quick sort takes its samples: Highway's own library draws these bytes at random. Fixed, the same
/// input takes the same time, and heap sort bounds the time of one that was made to be slow.
void hwy::Sorter::Fill24Bytes(void const* /*heap*/, std::size_t /*length*/, void* bytes) {
    static constexpr std::uint64_t seed[3] = {0x243f6a8885a308d3, 0x13198a2e03707344, 0xa4093822299f31d0};
    std::memcpy(bytes, seed, sizeof(seed));
}

/// What the headers call where other types of keys would have lanes that these have not. Nothing gets here,
/// but an unoptimised build refers to it.
void hwy::Abort(char const* /*file*/, int /*line*/, char const* /*format*/, ...) {
    __builtin_trap();
}

namespace Tervane::Math::Detail {

namespace {

using Sort = void (*)(std::int64_t*, std::size_t) noexcept;

Sort bestSort() noexcept {
#    if HWY_ARCH_X86
    __builtin_cpu_init();
    bool const hasAVX2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi")
                         && __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("fma");
#        if HWY_TARGETS & HWY_AVX3
    if (hasAVX2 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl")
        && __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512bw"))
        return N_AVX3::sortKeys;
#        endif
#        if HWY_TARGETS & HWY_AVX2
    if (hasAVX2)
        return N_AVX2::sortKeys;
#        endif
#    endif
    return nullptr;
}

Sort const sort = bestSort();

} // namespace

bool canSortKeys() noexcept {
    return sort != nullptr;
}

void sortKeys(std::int64_t* keys, std::size_t n) noexcept {
    sort(keys, n);
}

} // namespace Tervane::Math::Detail

#endif

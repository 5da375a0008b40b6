#pragma once

#include <Math/Slice.h>

#include <cstddef>
#include <cstdint>

namespace Tervane::Math::Detail {

/// A slice applied to a vector: element k of the selection is source element position(k).
struct ResolvedSlice {
    std::int32_t start;
    std::int32_t step;
    std::size_t count;

    std::size_t position(std::size_t k) const noexcept {
        // Unsigned, because positions are 32-bit numbers that wrap.
        auto const wrapped = static_cast<std::uint32_t>(start)
                             + static_cast<std::uint32_t>(step) * static_cast<std::uint32_t>(k);
        return static_cast<std::size_t>(static_cast<std::int64_t>(static_cast<std::int32_t>(wrapped)));
    }
};

/// Resolves a slice against a vector of `n` elements, for both generations. The start clamp looks at the
/// step, the stop clamp at the stop as the caller gave it (compatibility C16).
///
/// @pre slice.step() is not 0
inline ResolvedSlice resolveSlice(Slice const& slice, std::size_t n) noexcept {
    auto const fromEnd = [n](int position) {
        return position < 0 ? static_cast<std::int32_t>(static_cast<std::uint32_t>(n)
                                                        + static_cast<std::uint32_t>(position))
                            : position;
    };
    // Sign extension makes a position that is still negative huge, so it counts as beyond the vector.
    auto const isBeyond = [n](std::int32_t position) {
        return static_cast<std::uint64_t>(static_cast<std::int64_t>(position)) > n;
    };
    auto const clamped = [n](bool toLastElement) {
        return static_cast<std::int32_t>(n - (toLastElement ? 1 : 0));
    };

    std::int32_t start = fromEnd(slice.start());
    if (isBeyond(start))
        start = clamped(slice.step() <= 0);
    std::int32_t stop = fromEnd(slice.stop());
    if (isBeyond(stop))
        stop = clamped(slice.stop() <= 0);

    // Through 64 bits, because the smallest integer divided by -1 traps; narrowed back, it wraps.
    auto const distance =
        static_cast<std::int32_t>(static_cast<std::uint32_t>(stop) - static_cast<std::uint32_t>(start));
    auto const count = static_cast<std::int32_t>(std::int64_t{distance} / slice.step());
    return {start, slice.step(), count > 0 ? static_cast<std::size_t>(count) : 0};
}

} // namespace Tervane::Math::Detail

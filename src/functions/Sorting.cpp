#include "functions/Sorting.h"

#include "foundation/Multiversion.h"
#include "functions/KeySort.h"

#include <Math/Sorting.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

namespace Tervane::Math {

namespace {

// From here on sorting vectors of keys repays making them: measured where it draws level with the standard
// sort of the same elements again and again, whose branches the processor then foretells. Of elements that it
// has not seen, the standard sort takes four times as long at 32.
constexpr std::size_t shortestSortedByKeys = 17;

// The keys are integers in the order of the elements, -0.0 before 0.0, with the NaNs behind infinity: each
// element has its own, so every bit pattern comes back. As integers, positive elements are in order and
// negative ones in the opposite order, which their flipped bits put right; then the NaNs with a sign come
// first, and a rotation of all integers by their number takes them to the end.
constexpr std::uint64_t signedNaNs = (std::uint64_t{1} << 52) - 1;

constexpr std::int64_t flipNegative(std::int64_t bits) noexcept {
    return bits ^ ((bits >> 63) & std::numeric_limits<std::int64_t>::max());
}

constexpr std::int64_t keyOf(double x) noexcept {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(flipNegative(std::bit_cast<std::int64_t>(x)))
                                     - signedNaNs);
}

constexpr double elementOf(std::int64_t key) noexcept {
    return std::bit_cast<double>(
        flipNegative(static_cast<std::int64_t>(static_cast<std::uint64_t>(key) + signedNaNs)));
}

// memcpy() is what makes objects of another type out of the elements in their own storage.
TVNMATH_MULTIVERSION void replaceByKeys(double* values, std::size_t n) noexcept {
    for (std::size_t i = 0; i < n; ++i) {
        std::int64_t const key = keyOf(values[i]);
        std::memcpy(values + i, &key, sizeof(key));
    }
}

TVNMATH_MULTIVERSION void replaceByElements(std::int64_t* keys, std::size_t n) noexcept {
    for (std::size_t i = 0; i < n; ++i) {
        double const x = elementOf(keys[i]);
        std::memcpy(keys + i, &x, sizeof(x));
    }
}

bool hasNaN(double const* values, std::size_t n) noexcept {
    // As wide as an element, so that the comparison's mask is the value accumulated.
    std::int64_t found = 0;
    for (std::size_t i = 0; i < n; ++i)
        found |= values[i] != values[i] ? -1 : 0;
    return found != 0;
}

// With a NaN among the elements the standard sort may leave the range and write over its neighbours.
void sortByComparison(double* values, std::size_t n) {
    double* end = values + n;
    if (hasNaN(values, n))
        end = std::partition(values, end, [](double x) { return x == x; });
    std::sort(values, end);
}

} // namespace

void Detail::Kernels::sort(double* values, std::size_t n) {
    if (n < shortestSortedByKeys || !canSortKeys())
        return sortByComparison(values, n);
    replaceByKeys(values, n);
    auto* const keys = std::launder(reinterpret_cast<std::int64_t*>(values));
    sortKeys(keys, n);
    replaceByElements(keys, n);
}

Vector2 sort(Vector2&& x) {
    Detail::Kernels::sort(x.data(), x.length());
    return std::move(x);
}

Vector2 sort(Vector2 const& x) {
    Vector2 result(x);
    Detail::Kernels::sort(result.data(), result.length());
    return result;
}

} // namespace Tervane::Math

#include "functions/Sorting.h"

#include "foundation/Multiversion.h"

#include <Math/Sorting.h>

#include <algorithm>
#include <cstdint>
#include <utility>

namespace Tervane::Math {

namespace {

// With a NaN among the elements the standard sort may leave the range and write over its neighbours. Finding
// out is one pass at memory speed, a small part of the sort.
TVNMATH_MULTIVERSION bool hasNaN(double const* values, std::size_t n) noexcept {
    // As wide as an element, so that the comparison's mask is the value accumulated.
    std::int64_t found = 0;
    for (std::size_t i = 0; i < n; ++i)
        found |= values[i] != values[i] ? -1 : 0;
    return found != 0;
}

} // namespace

void Detail::Kernels::sort(double* values, std::size_t n) {
    double* end = values + n;
    if (hasNaN(values, n))
        end = std::partition(values, end, [](double x) { return x == x; });
    std::sort(values, end);
}

Vector2 sort(Vector2&& x) {
    Detail::Kernels::sort(x.data(), x.length());
    return std::move(x);
}

Vector2 sort(Vector2 const& x) {
    return sort(Vector2(x));
}

} // namespace Tervane::Math

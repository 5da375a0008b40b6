#include "foundation/ElementwiseDispatch.h"
#include "foundation/LaneReduction.h"
#include "foundation/Multiversion.h"
#include "legacy/Access.h"

#include <Math/Reductions.h>

#include <algorithm>
#include <limits>

namespace Tervane::Math {

namespace {

double meanOf(double const* values, std::size_t n) noexcept {
    double total = 0.0;
    for (std::size_t i = 0; i < n; ++i)
        total += values[i];
    return total / static_cast<double>(n);
}

struct TakeLarger {
    [[gnu::always_inline]] void operator()(auto& largest, auto const& other) const noexcept {
        largest = largest < other ? other : largest;
    }
};

// `a < b ? b : a` is the comparison of std::max_element: it keeps a where b is a NaN, and is one instruction.
// All running maxima start with the first element, so that a NaN in front stays the result (compatibility
// C43): no element is above it. Which of several equal elements came first is lost; that shows with 0.0 and
// -0.0 only, and maximumOf() mends it.
//
// @pre n is not 0
#define TVNMATH_SOME_MAXIMUM(ATTRIBUTE, WIDTH)                                                               \
    ATTRIBUTE double someMaximum(double const* values, std::size_t n) noexcept {                             \
        return Detail::reduceInLanes<WIDTH>(values, n, values[0], TakeLarger());                             \
    }
TVNMATH_EACH_VERSION(TVNMATH_SOME_MAXIMUM)
#undef TVNMATH_SOME_MAXIMUM

double maximumOf(double const* values, std::size_t n) noexcept {
    if (n == 0)
        return std::numeric_limits<double>::quiet_NaN();
    double const largest = someMaximum(values, n);
    // 0.0 and -0.0 are equal and differ in their bits: the first of them is the result.
    return largest == 0.0 ? *std::find(values, values + n, 0.0) : largest;
}

} // namespace

using Detail::LegacyAccess;

double sum(Vector2 const& x) {
    return ElementwiseDispatch::sum(x.data(), x.data() + x.length());
}

double sum(Vector const& x) {
    return ElementwiseDispatch::sum(LegacyAccess::elements(x).begin(), LegacyAccess::elements(x).end());
}

double mean(Vector2 const& x) {
    return meanOf(x.data(), x.length());
}

double mean(Vector const& x) {
    return meanOf(LegacyAccess::elements(x).data(), LegacyAccess::elements(x).length());
}

double max(Vector2 const& x) {
    return maximumOf(x.data(), x.length());
}

double max(Vector const& x) {
    return maximumOf(LegacyAccess::elements(x).data(), LegacyAccess::elements(x).length());
}

std::size_t len(Vector2 const& x) {
    return x.length();
}

std::size_t len(VectorView2 const& x) {
    return x.length();
}

std::size_t len(Vector const& x) {
    return x.length();
}

} // namespace Tervane::Math

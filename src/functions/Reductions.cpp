#include "foundation/ElementwiseDispatch.h"
#include "foundation/Multiversion.h"
#include "legacy/Access.h"

#include <Math/Reductions.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Tervane::Math {

namespace Detail::Kernels {

namespace {

using FourLanes __attribute__((vector_size(32), aligned(8), may_alias)) = double;

double mean(double const* values, std::size_t n) noexcept {
    double total = 0.0;
    for (std::size_t i = 0; i < n; ++i)
        total += values[i];
    return total / static_cast<double>(n);
}

// The comparison of the standard search, which never takes a NaN. It is one instruction in this order of the
// operands. Eight registers cover its four cycles of latency at two a cycle. The lanes forget which of
// several equal elements came first.
//
// pre: n is not 0, and the first element is not a NaN
TVNMATH_MULTIVERSION double someMaximum(double const* values, std::size_t n) noexcept {
    constexpr std::size_t registers = 8;
    constexpr std::size_t block = 4 * registers;
    double largest = values[0];
    FourLanes lanes[registers];
    for (std::size_t r = 0; r < registers; ++r)
        lanes[r] = FourLanes{largest, largest, largest, largest};
    std::size_t i = 0;
    for (; i + block <= n; i += block)
        for (std::size_t r = 0; r < registers; ++r) {
            FourLanes const x = *reinterpret_cast<FourLanes const*>(values + i + 4 * r);
            lanes[r] = lanes[r] < x ? x : lanes[r];
        }
    for (std::size_t r = 1; r < registers; ++r)
        lanes[0] = lanes[0] < lanes[r] ? lanes[r] : lanes[0];
    for (std::size_t lane = 0; lane < 4; ++lane)
        largest = largest < lanes[0][lane] ? lanes[0][lane] : largest;
    for (; i < n; ++i)
        largest = largest < values[i] ? values[i] : largest;
    return largest;
}

double max(double const* values, std::size_t n) noexcept {
    if (n == 0)
        return std::numeric_limits<double>::quiet_NaN();
    // No element is above a NaN, so the standard search stays at one in front.
    if (std::isnan(values[0]))
        return values[0];
    double const largest = someMaximum(values, n);
    // Only zeros are equal without being the same, and then the first one decides.
    return largest == 0.0 ? *std::find(values, values + n, 0.0) : largest;
}

} // namespace

} // namespace Detail::Kernels

using Detail::LegacyAccess;

double sum(Vector2 const& x) {
    return ElementwiseDispatch::sum(x.data(), x.data() + x.length());
}

double sum(Vector const& x) {
    return ElementwiseDispatch::sum(LegacyAccess::elements(x).begin(), LegacyAccess::elements(x).end());
}

double mean(Vector2 const& x) {
    return Detail::Kernels::mean(x.data(), x.length());
}

double mean(Vector const& x) {
    return Detail::Kernels::mean(LegacyAccess::elements(x).data(), LegacyAccess::elements(x).length());
}

double max(Vector2 const& x) {
    return Detail::Kernels::max(x.data(), x.length());
}

double max(Vector const& x) {
    return Detail::Kernels::max(LegacyAccess::elements(x).data(), LegacyAccess::elements(x).length());
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

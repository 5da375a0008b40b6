// Compiled without errno for mathematical functions, which alone keeps the square root from being vectorised.
// No element for which it makes a difference gets here.

#include "foundation/Multiversion.h"
#include "functions/ScalarFunctions.h"

#include <cmath>
#include <cstdint>

namespace Tervane::Math::Detail {

namespace {

TVNMATH_MULTIVERSION bool rootsUnlessNegative(double const* in, double* out, std::size_t n) noexcept {
    // As wide as an element, so that the comparison's mask is the value accumulated.
    std::int64_t negative = 0;
    for (std::size_t i = 0; i < n; ++i)
        negative |= in[i] < 0.0 ? -1 : 0;
    if (negative != 0)
        return false;
    TVNMATH_INDEPENDENT_ITERATIONS
    for (std::size_t i = 0; i < n; ++i)
        out[i] = std::sqrt(in[i]);
    return true;
}

} // namespace

bool Kernels::squareRootsUnlessNegative(double const* in, double* out, std::size_t n) noexcept {
    return rootsUnlessNegative(in, out, n);
}

} // namespace Tervane::Math::Detail

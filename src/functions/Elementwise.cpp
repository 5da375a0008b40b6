#include "containers/Access.h"
#include "foundation/ElementwiseDispatch.h"
#include "functions/ScalarFunctions.h"
#include "legacy/Access.h"

#include <Math/Elementwise.h>

#include <algorithm>
#include <utility>

namespace Tervane::Math {

namespace {

using Detail::Absolute;
using Detail::ComplexArray;
using Detail::ContainerAccess;
using Detail::Cosine;
using Detail::DecimalLogarithm;
using Detail::Exponential;
using Detail::LegacyAccess;
using Detail::Magnitude;
using Detail::Power;
using Detail::Sine;
using Detail::SquareRoot;
using Detail::transformed;

// Short enough to be in the first-level cache when the roots are taken after the signs were looked at, and
// for one negative element not to slow many down.
constexpr std::size_t squareRootBlock = 256;

} // namespace

void Detail::SquareRoot::operator()(double const* in, double* out, std::size_t n) const noexcept {
    for (std::size_t i = 0; i < n; i += squareRootBlock) {
        std::size_t const count = std::min(squareRootBlock, n - i);
        if (!Kernels::squareRootsUnlessNegative(in + i, out + i, count))
            Kernels::inOrder(in + i, out + i, count, *this);
    }
}

Vector2 abs(Vector2&& x) {
    return transformed(std::move(x), Absolute());
}

Vector2 abs(Vector2 const& x) {
    return transformed(x, Absolute());
}

Vector2 sin(Vector2&& x) {
    return transformed(std::move(x), Sine());
}

Vector2 sin(Vector2 const& x) {
    return transformed(x, Sine());
}

Vector2 cos(Vector2&& x) {
    return transformed(std::move(x), Cosine());
}

Vector2 cos(Vector2 const& x) {
    return transformed(x, Cosine());
}

Vector2 exp(Vector2&& x) {
    return transformed(std::move(x), Exponential());
}

Vector2 exp(Vector2 const& x) {
    return transformed(x, Exponential());
}

Vector2 log10(Vector2&& x) {
    return transformed(std::move(x), DecimalLogarithm());
}

Vector2 log10(Vector2 const& x) {
    return transformed(x, DecimalLogarithm());
}

Vector2 sqrt(Vector2&& x) {
    return transformed(std::move(x), SquareRoot());
}

Vector2 sqrt(Vector2 const& x) {
    return transformed(x, SquareRoot());
}

Vector2 pow(Vector2&& x, int n) {
    return transformed(std::move(x), Power{static_cast<double>(n)});
}

Vector2 pow(Vector2 const& x, int n) {
    return transformed(x, Power{static_cast<double>(n)});
}

Vector abs(Vector&& x) {
    return transformed(std::move(x), Absolute());
}

Vector abs(Vector const& x) {
    return transformed(x, Absolute());
}

Vector sin(Vector&& x) {
    return transformed(std::move(x), Sine());
}

Vector sin(Vector const& x) {
    return transformed(x, Sine());
}

Vector cos(Vector&& x) {
    return transformed(std::move(x), Cosine());
}

Vector cos(Vector const& x) {
    return transformed(x, Cosine());
}

Vector exp(Vector&& x) {
    return transformed(std::move(x), Exponential());
}

Vector exp(Vector const& x) {
    return transformed(x, Exponential());
}

Vector log10(Vector&& x) {
    return transformed(std::move(x), DecimalLogarithm());
}

Vector log10(Vector const& x) {
    return transformed(x, DecimalLogarithm());
}

Vector sqrt(Vector&& x) {
    return transformed(std::move(x), SquareRoot());
}

Vector sqrt(Vector const& x) {
    return transformed(x, SquareRoot());
}

Vector pow(Vector&& x, int n) {
    return transformed(std::move(x), Power{static_cast<double>(n)});
}

Vector pow(Vector const& x, int n) {
    return transformed(x, Power{static_cast<double>(n)});
}

Vector2 abs(ComplexVector2 const& z) {
    // A column whatever the orientation of z (compatibility C37).
    Vector2 result = ContainerAccess::uninitialised(z.length(), Column);
    std::complex<double> const* const first = ContainerAccess::elements(z);
    ElementwiseDispatch::transform(first, first + z.length(), result.data(), Magnitude());
    return result;
}

Vector abs(ComplexVector const& z) {
    ComplexArray const& elements = LegacyAccess::elements(z);
    Vector result = LegacyAccess::uninitialisedVector(elements.length());
    ElementwiseDispatch::transform(elements.begin(), elements.end(), LegacyAccess::elements(result).begin(),
                                   Magnitude());
    return result;
}

} // namespace Tervane::Math

#include "containers/Access.h"
#include "foundation/ElementwiseDispatch.h"
#include "functions/ScalarFunctions.h"
#include "legacy/Access.h"

#include <Math/Elementwise.h>

#include <algorithm>
#include <utility>

namespace Tervane::Math {

namespace Detail {

// Short enough to be in the first-level cache when the roots are taken after the signs were looked at, and
// for one negative element not to slow many down.
constexpr std::size_t squareRootBlock = 256;

void SquareRoot::operator()(double const* in, double* out, std::size_t n) const noexcept {
    for (std::size_t i = 0; i < n; i += squareRootBlock) {
        std::size_t const count = std::min(squareRootBlock, n - i);
        if (!Kernels::squareRootsUnlessNegative(in + i, out + i, count))
            Kernels::inOrder(in + i, out + i, count, *this);
    }
}

} // namespace Detail

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
using Detail::RealArray;
using Detail::Sine;
using Detail::SquareRoot;
using Detail::VectorData;

template<class Function>
Vector2 applied(Function f, Vector2&& x) {
    ElementwiseDispatch::transform(x.data(), x.data() + x.length(), x.data(), f);
    return std::move(x);
}

template<class Function>
Vector2 applied(Function f, Vector2 const& x) {
    Vector2 result = ContainerAccess::uninitialised(x.length(), ContainerAccess::orientation(x));
    ElementwiseDispatch::transform(x.data(), x.data() + x.length(), result.data(), f);
    return result;
}

template<class Function>
Vector applied(Function f, Vector&& x) {
    RealArray& elements = LegacyAccess::elements(x);
    ElementwiseDispatch::transform(elements.begin(), elements.end(), elements.begin(), f);
    return std::move(x);
}

template<class Function>
Vector applied(Function f, Vector const& x) {
    VectorData const& source = LegacyAccess::data(x);
    Vector result = LegacyAccess::uninitialisedVector(source.values.length(), source.orientation);
    ElementwiseDispatch::transform(source.values.begin(), source.values.end(),
                                   LegacyAccess::elements(result).begin(), f);
    return result;
}

} // namespace

Vector2 abs(Vector2&& x) {
    return applied(Absolute(), std::move(x));
}

Vector2 abs(Vector2 const& x) {
    return applied(Absolute(), x);
}

Vector2 sin(Vector2&& x) {
    return applied(Sine(), std::move(x));
}

Vector2 sin(Vector2 const& x) {
    return applied(Sine(), x);
}

Vector2 cos(Vector2&& x) {
    return applied(Cosine(), std::move(x));
}

Vector2 cos(Vector2 const& x) {
    return applied(Cosine(), x);
}

Vector2 exp(Vector2&& x) {
    return applied(Exponential(), std::move(x));
}

Vector2 exp(Vector2 const& x) {
    return applied(Exponential(), x);
}

Vector2 log10(Vector2&& x) {
    return applied(DecimalLogarithm(), std::move(x));
}

Vector2 log10(Vector2 const& x) {
    return applied(DecimalLogarithm(), x);
}

Vector2 sqrt(Vector2&& x) {
    return applied(SquareRoot(), std::move(x));
}

Vector2 sqrt(Vector2 const& x) {
    return applied(SquareRoot(), x);
}

Vector2 pow(Vector2&& x, int n) {
    return applied(Power{static_cast<double>(n)}, std::move(x));
}

Vector2 pow(Vector2 const& x, int n) {
    return applied(Power{static_cast<double>(n)}, x);
}

Vector abs(Vector&& x) {
    return applied(Absolute(), std::move(x));
}

Vector abs(Vector const& x) {
    return applied(Absolute(), x);
}

Vector sin(Vector&& x) {
    return applied(Sine(), std::move(x));
}

Vector sin(Vector const& x) {
    return applied(Sine(), x);
}

Vector cos(Vector&& x) {
    return applied(Cosine(), std::move(x));
}

Vector cos(Vector const& x) {
    return applied(Cosine(), x);
}

Vector exp(Vector&& x) {
    return applied(Exponential(), std::move(x));
}

Vector exp(Vector const& x) {
    return applied(Exponential(), x);
}

Vector log10(Vector&& x) {
    return applied(DecimalLogarithm(), std::move(x));
}

Vector log10(Vector const& x) {
    return applied(DecimalLogarithm(), x);
}

Vector sqrt(Vector&& x) {
    return applied(SquareRoot(), std::move(x));
}

Vector sqrt(Vector const& x) {
    return applied(SquareRoot(), x);
}

Vector pow(Vector&& x, int n) {
    return applied(Power{static_cast<double>(n)}, std::move(x));
}

Vector pow(Vector const& x, int n) {
    return applied(Power{static_cast<double>(n)}, x);
}

Vector2 abs(ComplexVector2 const& z) {
    // Callers rely on a column whatever the orientation of z.
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

#include "containers/Access.h"
#include "foundation/ElementwiseDispatch.h"
#include "foundation/Multiversion.h"
#include "foundation/Operations.h"
#include "foundation/Transform.h"

#include <Math/ComplexVector2.h>
#include <Math/Vector2.h>

#include <bit>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

namespace Tervane::Math {

namespace {

using Detail::Divide;
using Detail::Multiply;
using Detail::transform;
using Detail::transformed;
using Detail::withRight;
using Complex = std::complex<double>;

/// `yes` where `choice` holds and `no` elsewhere, by the bits: compilers make a branch of a conditional
/// expression around arithmetic that may raise floating-point flags, and a loop with a branch is not
/// vectorised.
inline double select(bool choice, double yes, double no) {
    std::uint64_t const mask = -static_cast<std::uint64_t>(choice);
    return std::bit_cast<double>((std::bit_cast<std::uint64_t>(yes) & mask)
                                 | (std::bit_cast<std::uint64_t>(no) & ~mask));
}

/// d / (a, b) by Smith's scaling, with every branch turned into a choice of operands. A term that is
/// multiplied by zero or added to it stays: it decides the sign of a zero and what infinities give.
inline void divide(double d, double const* z, double* quotient) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    double const a = z[0];
    double const b = z[1];
    bool const realIsLarger = std::abs(a) > std::abs(b);
    double const larger = select(realIsLarger, a, b);
    double const smaller = select(realIsLarger, b, a);
    double const r = smaller / larger;
    double const scaled = r * smaller + larger;
    double const realPart = select(realIsLarger, d + 0.0 * r, d * r + 0.0);
    double const imaginaryPart = select(realIsLarger, 0.0 - d * r, 0.0 * r - d);

    // z = 0 divides by a as it is. A NaN in z makes `scaled` NaN, and compares unequal to zero.
    bool const isZero = (a == 0.0) & (b == 0.0);
    double const denominator = select(isZero, a, scaled);
    double const real = select(isZero, d, realPart) / denominator;
    double const imaginary = select(isZero, 0.0, imaginaryPart) / denominator;
    bool const isUndefined = (scaled != scaled) | (scaled == 0.0);
    bool const isNaN = isUndefined & !isZero;
    quotient[0] = select(isNaN, nan, real);
    quotient[1] = select(isNaN, nan, imaginary);
}

// Over doubles, because no compiler at hand vectorises this over pairs.
TVNMATH_MULTIVERSION void divideAll(double d, double const* parts, double* quotients, std::size_t n) {
    TVNMATH_INDEPENDENT_ITERATIONS
    for (std::size_t i = 0; i < 2 * n; i += 2)
        divide(d, parts + i, quotients + i);
}

/// d / z for an element, and for a range of elements at once.
struct ScalarOver {
    static constexpr Detail::ElementCost cost = Detail::ElementCost::Streaming;
    double d;

    Complex operator()(Complex z) const {
        double const parts[] = {z.real(), z.imag()};
        double quotient[2];
        divide(d, parts, quotient);
        return {quotient[0], quotient[1]};
    }

    void operator()(Complex const* in, Complex* out, std::size_t n) const {
        divideAll(d, reinterpret_cast<double const*>(in), reinterpret_cast<double*>(out), n);
    }
};

} // namespace

ComplexVector2& ComplexVector2::operator*=(double const& right) {
    return transform(*this, withRight<Multiply>(right));
}

ComplexVector2& ComplexVector2::operator/=(double const& right) {
    return transform(*this, withRight<Divide>(right));
}

ComplexVector2& ComplexVector2::operator*=(Vector2 const& right) {
    return transform(*this, right, Multiply());
}

ComplexVector2 operator*(ComplexVector2&& left, double const& right) {
    return transformed(std::move(left), withRight<Multiply>(right));
}
ComplexVector2 operator*(ComplexVector2 const& left, double const& right) {
    return transformed(left, withRight<Multiply>(right));
}
ComplexVector2 operator*(double const& left, ComplexVector2&& right) {
    return std::move(right) * left;
}
ComplexVector2 operator*(double const& left, ComplexVector2 const& right) {
    return right * left;
}
ComplexVector2 operator*(ComplexVector2&& left, Vector2 const& right) {
    return transformed(std::move(left), right, Multiply());
}
ComplexVector2 operator*(ComplexVector2 const& left, Vector2 const& right) {
    return transformed(left, right, Multiply());
}
ComplexVector2 operator*(Vector2 const& left, ComplexVector2&& right) {
    return std::move(right) * left;
}
ComplexVector2 operator*(Vector2 const& left, ComplexVector2 const& right) {
    return right * left;
}
ComplexVector2 operator*(ComplexVectorView2 const& left, Vector2 const& right) {
    return transformed(left, right, Multiply());
}
ComplexVector2 operator/(ComplexVector2&& left, double const& right) {
    return transformed(std::move(left), withRight<Divide>(right));
}
ComplexVector2 operator/(ComplexVector2 const& left, double const& right) {
    return transformed(left, withRight<Divide>(right));
}
ComplexVector2 operator/(double const& left, ComplexVector2&& right) {
    return transformed(std::move(right), ScalarOver{left});
}
ComplexVector2 operator/(double const& left, ComplexVector2 const& right) {
    return transformed(right, ScalarOver{left});
}

} // namespace Tervane::Math

#pragma once

#include "foundation/ElementwiseDispatch.h"

#include <cmath>
#include <complex>
#include <cstddef>

namespace Tervane::Math::Detail {

/// @name The scalar functions
/// One table for both generations. An element is what the run-time library's function gives, so the functions
/// that are not a single instruction are called and never vectorised.
/// @{

/// Clears the sign bit.
struct Absolute {
    static constexpr ElementCost cost = ElementCost::Streaming;
    double operator()(double x) const { return std::fabs(x); }
};

struct Sine {
    static constexpr ElementCost cost = ElementCost::Function;
    double operator()(double x) const { return std::sin(x); }
};

struct Cosine {
    static constexpr ElementCost cost = ElementCost::Function;
    double operator()(double x) const { return std::cos(x); }
};

struct Exponential {
    static constexpr ElementCost cost = ElementCost::Function;
    double operator()(double x) const { return std::exp(x); }
};

struct DecimalLogarithm {
    static constexpr ElementCost cost = ElementCost::Function;
    double operator()(double x) const { return std::log10(x); }
};

/// The hardware's square root, which is the library's, vectorised as far as no element is negative: those go
/// through the library for its report of a domain error.
struct SquareRoot {
    static constexpr ElementCost cost = ElementCost::Streaming;
    double operator()(double x) const { return std::sqrt(x); }
    void operator()(double const* in, double* out, std::size_t n) const noexcept;
};

/// The general power function of the run-time library, whatever the exponent. Out of line and opaque: where a
/// compiler sees that the exponent is 2, it puts a product in its place, which rounds differently.
double power(double x, double exponent);

struct Power {
    static constexpr ElementCost cost = ElementCost::Function;
    double exponent;
    double operator()(double x) const { return power(x, exponent); }
};

struct Magnitude {
    static constexpr ElementCost cost = ElementCost::Function;
    double operator()(std::complex<double> z) const { return std::hypot(z.real(), z.imag()); }
};
/// @}

namespace Kernels {

/// Writes the square roots of `n` elements unless one is negative. The output is the input or does not
/// overlap it.
/// @return whether it wrote
bool squareRootsUnlessNegative(double const* in, double* out, std::size_t n) noexcept;

} // namespace Kernels

} // namespace Tervane::Math::Detail

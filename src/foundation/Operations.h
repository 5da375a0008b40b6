#pragma once

#include "foundation/ElementwiseDispatch.h"

#include <complex>

namespace Tervane::Math::Detail {

/// @name Arithmetic on two elements
/// @{
struct Add {
    static constexpr ElementCost cost = ElementCost::Streaming;
    double operator()(double a, double b) const { return a + b; }
};

struct Subtract {
    static constexpr ElementCost cost = ElementCost::Streaming;
    double operator()(double a, double b) const { return a - b; }
};

struct Multiply {
    static constexpr ElementCost cost = ElementCost::Streaming;
    double operator()(double a, double b) const { return a * b; }
    std::complex<double> operator()(std::complex<double> z, double b) const {
        return {z.real() * b, z.imag() * b};
    }
};

struct Divide {
    static constexpr ElementCost cost = ElementCost::Streaming;
    double operator()(double a, double b) const { return a / b; }
};
/// @}

/// Flips the sign bit, so 0.0 becomes -0.0 and a NaN keeps its payload.
struct Negate {
    static constexpr ElementCost cost = ElementCost::Streaming;
    double operator()(double a) const { return -a; }
};

/// element op scalar, for a two-element operation.
template<class Op>
struct WithRightScalar {
    static constexpr ElementCost cost = Op::cost;
    double scalar;
    double operator()(double a) const { return Op()(a, scalar); }
};

/// scalar op element, for a two-element operation.
template<class Op>
struct WithLeftScalar {
    static constexpr ElementCost cost = Op::cost;
    double scalar;
    double operator()(double a) const { return Op()(scalar, a); }
};

template<class Op>
WithRightScalar<Op> withRight(double scalar) {
    return {scalar};
}

template<class Op>
WithLeftScalar<Op> withLeft(double scalar) {
    return {scalar};
}

} // namespace Tervane::Math::Detail

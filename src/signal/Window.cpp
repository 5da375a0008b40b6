#include "foundation/ElementwiseDispatch.h"
#include "functions/ScalarFunctions.h"
#include "legacy/Access.h"

#include <Math/Window.h>

#include <cstdint>

namespace Tervane::Math::SignalProcessing::Window {

namespace {

using Detail::Cosine;
using Detail::ElementCost;

constexpr double twoPi = 6.283185307179586;

/// @name The windows at point k
/// The order of evaluation decides the last bit (compatibility C60).
/// @{
struct Hann {
    static constexpr ElementCost cost = ElementCost::Function;
    double lastPoint;
    double operator()(double k) const { return (1.0 - Cosine()(twoPi * k / lastPoint)) * 0.5; }
};

struct Hamming {
    static constexpr ElementCost cost = ElementCost::Function;
    double lastPoint;
    double operator()(double k) const { return 0.54 - 0.46 * Cosine()(twoPi * k / lastPoint); }
};

struct Blackman {
    static constexpr ElementCost cost = ElementCost::Function;
    double lastPoint;
    double operator()(double k) const {
        double const c = Cosine()(k * twoPi / lastPoint);
        return (0.42 - 0.5 * c) + 0.08 * (2.0 * Detail::power(c, 2.0) - 1.0);
    }
};
/// @}

/// Puts the window at k in the place of each k of the first `n` points.
template<class Shape>
void shapePoints(Vector& points, std::size_t n, Shape shape) {
    double* const first = Detail::LegacyAccess::elements(points).begin();
    ElementwiseDispatch::transform(first, first + n, first, shape);
}

template<class Shape>
Vector raisedCosine(int N) {
    Vector w = Vector::arange(0, N);
    if (N == 1)
        w[0] = 1.0;
    else if (N > 1)
        shapePoints(w, w.length(), Shape{static_cast<double>(N - 1)});
    return w;
}

int onePointMore(int N) {
    // Unsigned, because signed overflow is undefined. The largest number wraps to the smallest, and the
    // window of that many points is empty.
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(N) + 1U);
}

/// Of an empty window, length - 1 is the largest size there is, and the resize throws (compatibility C61).
Vector withoutLastPoint(Vector w) {
    w.resize(w.length() - 1, 1.0);
    return w;
}

} // namespace

Vector hann(int N) {
    return raisedCosine<Hann>(N);
}

Vector hamming(int N) {
    return raisedCosine<Hamming>(N);
}

Vector hamming(int N, bool symmetric) {
    return symmetric ? hamming(N) : withoutLastPoint(hamming(onePointMore(N)));
}

Vector blackman(int N) {
    if (N < 1)
        return Vector();
    // A zero, where the other windows have a one (compatibility C59).
    if (N == 1)
        return Vector(1);
    Vector w = Vector::arange(0, N);
    std::size_t const n = w.length();
    std::size_t const half = (n + 1) / 2;
    shapePoints(w, half, Blackman{static_cast<double>(N - 1)});
    double* const points = Detail::LegacyAccess::elements(w).data();
    for (std::size_t i = 0; i < half; ++i)
        points[n - 1 - i] = points[i];
    return w;
}

Vector blackman(int N, bool symmetric) {
    return symmetric ? blackman(N) : withoutLastPoint(blackman(onePointMore(N)));
}

} // namespace Tervane::Math::SignalProcessing::Window

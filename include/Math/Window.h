#pragma once

/// @file
/// Tapering windows for spectra, as legacy vectors.
///
/// @code
/// using namespace Tervane::Math;
/// Vector const samples(1024, 1.0);
/// Vector const window = SignalProcessing::Window::hamming(1024, false);    // periodic
/// Vector const tapered = window * samples;
/// @endcode

#include <Math/Export.h>
#include <Math/Vector.h>

namespace Tervane::Math::SignalProcessing::Window {

/// @name Symmetric windows
/// @{

/// N points k = 0 … N - 1 of a raised cosine, as a column. With D = N - 1 and 2π the
/// double 6.283185307179586:
///
///  - hann: 0.5 (1 - cos(2πk / D))
///  - hamming: 0.54 - 0.46 cos(2πk / D)
///  - blackman: (0.42 - 0.5 c) + 0.08 (2c² - 1) with c = cos(2πk / D), so its second cosine comes from the
///    double-angle identity; computed for the first half and mirrored, so it is symmetric bit for bit.
///
/// Each is computed in the order written, so the values are fixed to the last bit (compatibility C60). Empty
/// when `N` is not positive. Of one point hann and hamming are [1], blackman is [0] (compatibility C59).
///
/// Literature: F. J. Harris, "On the use of windows for harmonic analysis with the discrete Fourier
/// transform", Proceedings of the IEEE 66 (1978).
///
/// @throws std::bad_alloc when the result cannot be allocated
TVNMATH_API Vector hann(int N);
TVNMATH_API Vector hamming(int N);
TVNMATH_API Vector blackman(int N);
/// @}

/// @name Periodic windows
/// @{

/// With `symmetric` the window of N points above; without, that of N + 1 points with its last one dropped.
/// So hamming(1, false) is [0.08] and the windows of no points are empty. There is no periodic hann.
///
/// See compatibility C61.
///
/// @param N without `symmetric` not negative: there is no point to drop from the empty window, and the
///        request for -1 elements throws `std::length_error` ("vector too long")
/// @param symmetric whether the first and the last point are alike
TVNMATH_API Vector hamming(int N, bool symmetric);
TVNMATH_API Vector blackman(int N, bool symmetric);
/// @}

} // namespace Tervane::Math::SignalProcessing::Window

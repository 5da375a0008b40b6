#pragma once

/// @file
/// The Fourier transform of real samples and back.
///
/// @code
/// using namespace Tervane::Math;
/// Vector2 const samples = sin(0.1 * arange(1000));
/// auto const spectrum = FFT::fft_real(samples);
/// if (!spectrum)
///     return spectrum.error();
/// auto const again = FFT::ifft_real(*spectrum, samples.length());     // the samples, up to rounding
/// @endcode
///
/// The length may be any number; it is fastest when all of its prime factors are small.
/// Complexity: O(n log n). Each call sets up a transform of its own, so calls may run on any threads at once;
/// oneMKL may use threads of its own inside a call.
///
/// The rounding errors stay near 1e-15 of the largest sample, with one exception, which is oneMKL's: on
/// processors with AVX-512, even lengths that are neither powers of two nor made of small primes only lose
/// digits, the more the longer they are. There and back again, samples within 1 in magnitude came back within
/// 8e-15 at 102, 3e-12 at 93,944 and 3e-11 at 799,928. Where that matters, take a power of two or an odd
/// length, or set `MKL_ENABLE_INSTRUCTIONS=AVX2` in the environment: 2e-15 at 799,928.

#include <Math/ComplexVector2.h>
#include <Math/Export.h>
#include <Math/Vector2.h>
#include <System/ErrorCode.h>
#include <System/Expected.h>

#include <cstddef>

namespace Tervane::Math {

class ComplexVector;
class Vector;

namespace FFT {

/// The one-sided spectrum of the n real samples `x`, unscaled:
///
///     X[k] = sum over j of x[j] exp(-2 pi i j k / n)     for k = 0 ... n / 2
///
/// that is n / 2 + 1 bins by integer division. The result is a column.
///
/// @return the spectrum, or an `FFTErrc` (compatibility C5): for no samples that of the transform that could
///         not be set up. After a failing step the descriptor stays (compatibility C57).
TVNMATH_API System::Expected<ComplexVector2, System::ErrorCode2> fft_real(Vector2 const& x);

/// The n real samples of a one-sided spectrum, scaled by 1 / n, so that it undoes fft_real(). The result is a
/// column.
///
/// @param X a spectrum of at least n / 2 + 1 bins; nothing checks this. Bins past those are not read.
/// @param n the number of samples to rebuild; whether it is even decides whether the last bin that is read is
///        the Nyquist bin
/// @return the samples, or an `FFTErrc`
TVNMATH_API System::Expected<Vector2, System::ErrorCode2> ifft_real(ComplexVector2 const& X, std::size_t n);

/// @name Legacy
/// @{

/// The same transforms. `error` is never written (compatibility C58): a transform that cannot be set up, as
/// for a length of 0, leaves the result as it was made, zeros of length n / 2 + 1 or n. Use the current forms
/// to hear of failures.
TVNMATH_API ComplexVector fft_real(Vector const& x, System::ErrorCode& error);
TVNMATH_API Vector ifft_real(ComplexVector const& X, std::size_t n, System::ErrorCode& error);
/// @}

} // namespace FFT

} // namespace Tervane::Math

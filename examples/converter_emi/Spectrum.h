#pragma once

/// @file
/// From evenly spaced samples to an amplitude spectrum, and back again.

#include "Failure.h"

#include <Math/ComplexVector2.h>
#include <Math/Vector2.h>

#include <complex>
#include <cstddef>

namespace ConverterEmi {

using Tervane::Math::ComplexVector2;
using Tervane::Math::Vector2;

/// Which taper the samples get before the transform.
enum class WindowKind { None, Hann, Hamming, Blackman };

/// A window of @p length points for a spectrum, in its periodic form: the point that would repeat the first
/// one is left out, so that its own transform is zero at all but its few main bins.
Vector2 makeWindow(WindowKind kind, std::size_t length);

/// The one-sided spectrum of a windowed signal without its mean.
///
/// Both forms are scaled so that a sine on a bin shows its peak value there: the bins' energy in the negative
/// frequencies is added, and the window's coherent gain (its mean) is taken out.
struct Spectrum {
    ComplexVector2 bins; ///< bin k lies at k / (duration of the signal)
    Vector2 amplitude;   ///< peak values, the magnitudes of the bins

    std::complex<double> bin(std::size_t k) const { return {bins.data()[2 * k], bins.data()[2 * k + 1]}; }
};

/// Removes the mean, applies the window, transforms.
Expected<Spectrum, ErrorCode2> computeSpectrum(Vector2 const& samples, Vector2 const& window);

/// The level of sines with these peak values in volts, in dB above 1 uV. As on a measuring receiver, the
/// level is that of the effective (RMS) value.
Vector2 toDecibelMicrovolts(Vector2 const& amplitude);

/// The samples rebuilt from their transform.
struct RoundTrip {
    Vector2 rebuilt;           ///< unit of the samples
    double largestError = 0.0; ///< unit of the samples
};

/// Transforms the samples, without window, and back.
Expected<RoundTrip, ErrorCode2> rebuild(Vector2 const& samples);

} // namespace ConverterEmi

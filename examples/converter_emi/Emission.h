#pragma once

/// @file
/// From evenly spaced samples to an amplitude spectrum and its levels, back again, and the limit that the
/// levels must keep.

#include "Failure.h"

#include <Math/ComplexVector2.h>
#include <Math/Vector2.h>

#include <complex>
#include <cstddef>
#include <filesystem>

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

/// A frequency band.
struct Band {
    double start = 0.0; ///< Hz
    double stop = 0.0;  ///< Hz
};

/// Whether conducted emissions are defined in the band: EMIErrc::StartFrequencyTooSmall below 9 kHz,
/// EMIErrc::StartAboveStop when the band is upside down.
Expected<void, ErrorCode2> checkBand(Band const& band);

/// A level over frequency, straight between its corners over the logarithm of the frequency.
class LimitLine {
public:
    /// No line yet; only to be assigned to.
    LimitLine() = default;

    /// A line through the corners.
    ///
    /// @param frequency Hz, positive and in ascending order; at a step a frequency comes twice, and the
    ///        level before the step holds at the step itself
    /// @param level dBuV, one for each frequency
    LimitLine(Vector2 const& frequency, Vector2 const& level);

    /// A line of the form that standards for mains-operated equipment use, average detector: from 9 kHz on
    /// where the band starts below 150 kHz, and from 150 kHz on otherwise; to 30 MHz.
    static LimitLine builtIn(Band const& band);

    /// Reads the corners from the columns `frequency_Hz` and `limit_dBuV` of a CSV file.
    static Expected<LimitLine, ErrorCode2> read(std::filesystem::path const& file, Place& place);

    /// Whether the line covers the band; outside of its corners no limit is defined.
    Expected<void, ErrorCode2> checkCovers(Band const& band, Place& place) const;

    /// The limit in dBuV at each frequency in Hz.
    Vector2 at(Vector2 const& frequency) const;

    /// The part of the line that lies in the band: its ends there and the corners between them.
    LimitLine within(Band const& band) const;

    Vector2 const& frequency() const { return _frequency; } ///< Hz, of the corners
    Vector2 const& level() const { return _level; }         ///< dBuV, of the corners

private:
    Vector2 _frequency;
    Vector2 _logFrequency;
    Vector2 _level;
};

} // namespace ConverterEmi

#pragma once

/// @file
/// The band that is looked at and the limit that emissions must keep there.

#include "Failure.h"

#include <Math/Vector2.h>

#include <filesystem>

namespace ConverterEmi {

using Tervane::Math::Vector2;

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

#pragma once

/// @file
/// The measured or simulated record that the program works on, and the evenly spaced samples that a Fourier
/// transform needs.

#include "Failure.h"

#include <Math/Vector2.h>

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

namespace ConverterEmi {

using Tervane::Math::Vector2;

/// Which columns of which file.
struct RecordSource {
    std::filesystem::path file;
    std::string timeColumn;    ///< seconds; a file without it states its `sample_interval_s` in a comment
    std::string signalColumn;  ///< the emission: volts, or amperes when the name ends in "_A"
    std::string voltageColumn; ///< the output capacitor's voltage; empty when there is none
    std::string currentColumn; ///< the output capacitor's current; empty when there is none
};

/// Voltage and current of a capacitor, sampled at the record's times.
struct CapacitorRecord {
    Vector2 voltage; ///< V
    Vector2 current; ///< A
};

/// Samples at times that increase but need not be evenly spaced.
struct Record {
    Vector2 time;                             ///< s, strictly increasing
    Vector2 signal;                           ///< V or A, see isCurrent
    bool isCurrent = false;                   ///< whether the signal is a current
    std::string circuit;                      ///< what the file's comment `# circuit,NAME` says; may be empty
    std::optional<CapacitorRecord> capacitor; ///< when its columns were asked for
};

/// Reads a record. On failure @p place tells where.
Expected<Record, ErrorCode2> readRecord(RecordSource const& source, Place& place);

/// Evenly spaced times over a whole number of switching periods, so that every harmonic of the switching
/// frequency falls on a bin of the transform: harmonic h on bin h * periods.
struct Grid {
    double start = 0.0;      ///< s, the record's first time
    double interval = 0.0;   ///< s
    std::size_t samples = 0; ///< a power of two, unless the caller chose another number
    std::size_t periods = 0; ///< as many switching periods as the record holds

    double duration() const { return interval * static_cast<double>(samples); }               ///< s
    double binWidth() const { return 1.0 / duration(); }                                      ///< Hz
    double frequency(std::size_t bin) const { return static_cast<double>(bin) / duration(); } ///< Hz
    Vector2 times() const;                                                                    ///< s
};

/// The grid for a record.
///
/// @param time the record's times, increasing
/// @param switchingFrequency Hz
/// @param highestFrequency Hz, the band's end; the record must hold two samples per period of it on average
/// @param samples how many; when not given, the power of two from the record's own number up, and from 16 per
///        period of the highest frequency: straight lines between the record's points have images above half
///        the sampling rate, and the more samples, the weaker are those that fold back into the band
Expected<Grid, ErrorCode2> chooseGrid(Vector2 const& time, double switchingFrequency, double highestFrequency,
                                      std::optional<std::size_t> samples, Place& place);

/// @p values, known at the record's @p time, interpolated linearly at the grid's times.
Vector2 resample(Grid const& grid, Vector2 const& time, Vector2 const& values);

} // namespace ConverterEmi

#pragma once

/// @file
/// The measured or simulated record that the program works on.

#include "Failure.h"

#include <Math/Vector2.h>

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
    std::optional<CapacitorRecord> capacitor; ///< when its columns were asked for
};

/// Reads a record. On failure @p place tells where.
Expected<Record, ErrorCode2> readRecord(RecordSource const& source, Place& place);

} // namespace ConverterEmi

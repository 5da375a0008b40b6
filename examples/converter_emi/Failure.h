#pragma once

/// @file
/// How a step of this program fails: with an error value of the library's kind, and a place to go with it.
///
/// The program has errors of its own beside the library's. It makes them part of the same system by an
/// enumeration, a category that gives each enumerator a text, and a specialisation of
/// `ErrorCodeEnumConstructor`; from then on an enumerator can be returned wherever an `Expected` is.

#include <System/System.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace ConverterEmi {

using Tervane::System::ErrorCode2;
using Tervane::System::Expected;

/// What can be wrong with the input, the settings or the output.
enum class Failure : std::int32_t {
    FileNotReadable,
    FileEmpty,
    LineMalformed,
    ColumnMissing,
    FieldMissing,
    FieldNotNumber,
    SampleIntervalMissing,
    SampleIntervalNotPositive,
    TimeNotIncreasing,
    FrequencyNotIncreasing,
    TooFewSamples,
    TooManySamples,
    LessThanOnePeriod,
    NoHarmonicInBand,
    BandBeyondLimit,
    NoCapacitorCurrent,
    FileNotWritable,
    PlotNotDrawn,
};

/// The place of a failure in a file, as far as it is known. A step that fails fills it in.
struct Place {
    std::string file;
    std::size_t line = 0;   ///< counted from 1; 0 when the failure belongs to no line
    std::size_t column = 0; ///< number of the field in its line, counted from 1; 0 when it belongs to none
    std::string detail;     ///< what stands there, or by how much it misses
};

/// One line for a person: "file:line:column: message (detail)", with those parts that are known.
std::string describe(Place const& place, ErrorCode2 const& error);

} // namespace ConverterEmi

template<>
struct Tervane::System::ErrorCodeEnumConstructor<ConverterEmi::Failure> {
    Tervane::System::ErrorCode2 operator()(ConverterEmi::Failure failure) const;
};

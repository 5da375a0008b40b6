#pragma once

/// @file
/// What can go wrong in this program beside files: errors of its own, of the library's kind.

#include <common/Failure.h>

#include <cstdint>

namespace ConverterEmi {

using Examples::Place;
using Tervane::System::ErrorCode2;
using Tervane::System::Expected;

/// What can be wrong with the record or the settings.
enum class Failure : std::int32_t {
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
};

} // namespace ConverterEmi

/// Lets a Failure be returned wherever an `Expected` is.
template<>
struct Tervane::System::ErrorCodeEnumConstructor<ConverterEmi::Failure> {
    Tervane::System::ErrorCode2 operator()(ConverterEmi::Failure failure) const {
        // In the order of the enumerators.
        static Examples::TextCategory const category(
            "converter-emi", {
                                 u8"neither the time column nor a comment 'sample_interval_s' is there",
                                 u8"sample interval is not positive",
                                 u8"time does not increase",
                                 u8"frequencies are not positive and in ascending order",
                                 u8"too few samples",
                                 u8"too many samples",
                                 u8"record is shorter than one switching period",
                                 u8"no harmonic of the switching frequency lies in the band",
                                 u8"band reaches beyond the limit line",
                                 u8"capacitor current has no part at a harmonic of the switching frequency",
                             });
        return ErrorCode2(static_cast<int>(failure), category);
    }
};

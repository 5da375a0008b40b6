#include "Failure.h"

#include <fmt/format.h>

namespace ConverterEmi {

namespace {

class FailureCategory final : public Tervane::System::ErrorCategory2 {
public:
    Tervane::System::String2 message(int code) const override { return text(static_cast<Failure>(code)); }
    char const* name() const override { return "converter-emi"; }

private:
    static char8_t const* text(Failure failure) {
        switch (failure) {
        case Failure::FileNotReadable:
            return u8"file cannot be read";
        case Failure::FileEmpty:
            return u8"file holds no table";
        case Failure::LineMalformed:
            return u8"line is not well-formed CSV";
        case Failure::ColumnMissing:
            return u8"column is missing";
        case Failure::FieldMissing:
            return u8"line ends before this column";
        case Failure::FieldNotNumber:
            return u8"field is not a finite number";
        case Failure::SampleIntervalMissing:
            return u8"neither the time column nor a comment 'sample_interval_s' is there";
        case Failure::SampleIntervalNotPositive:
            return u8"sample interval is not positive";
        case Failure::TimeNotIncreasing:
            return u8"time does not increase";
        case Failure::FrequencyNotIncreasing:
            return u8"frequencies are not positive and in ascending order";
        case Failure::TooFewSamples:
            return u8"too few samples";
        case Failure::TooManySamples:
            return u8"too many samples";
        case Failure::LessThanOnePeriod:
            return u8"record is shorter than one switching period";
        case Failure::NoHarmonicInBand:
            return u8"no harmonic of the switching frequency lies in the band";
        case Failure::BandBeyondLimit:
            return u8"band reaches beyond the limit line";
        case Failure::NoCapacitorCurrent:
            return u8"capacitor current has no part at a harmonic of the switching frequency";
        case Failure::FileNotWritable:
            return u8"file cannot be written";
        case Failure::PlotNotDrawn:
            return u8"gnuplot did not draw the plots (is it installed? --no-plots does without)";
        }
        return u8"unknown failure";
    }
};

} // namespace

std::string describe(Place const& place, ErrorCode2 const& error) {
    std::string text;
    if (!place.file.empty()) {
        text += place.file + ":";
        if (place.line != 0) {
            text += fmt::format("{}:", place.line);
        }
        if (place.column != 0) {
            text += fmt::format("{}:", place.column);
        }
        text += " ";
    }
    text += error.message().narrow();
    if (!place.detail.empty()) {
        text += fmt::format(" ({})", place.detail);
    }
    return text;
}

} // namespace ConverterEmi

Tervane::System::ErrorCode2 Tervane::System::ErrorCodeEnumConstructor<ConverterEmi::Failure>::operator()(
    ConverterEmi::Failure failure) const {
    static ConverterEmi::FailureCategory const category;
    return ErrorCode2(static_cast<int>(failure), category);
}

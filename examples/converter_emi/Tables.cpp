#include "Tables.h"

#include <fmt/format.h>

#include <algorithm>
#include <complex>
#include <iterator>

namespace ConverterEmi {

namespace {

/// Appends numbers as one line, each with the fewest digits that give it back exactly.
template<class... Numbers>
void row(std::string& text, Numbers... numbers) {
    char const* separator = "";
    auto const field = [&](auto number) {
        fmt::format_to(std::back_inserter(text), "{}{}", separator, number);
        separator = ",";
    };
    (field(numbers), ...);
    text += '\n';
}

void quantity(std::string& text, char const* name, double value, char const* unit) {
    fmt::format_to(std::back_inserter(text), "{},{},{}\n", name, value, unit);
}

} // namespace

std::string waveformCsv(Analysis const& analysis) {
    std::string text = fmt::format("time_s,signal_{0},rebuilt_{0}\n", analysis.unit);
    Vector2 const time = analysis.grid.times();
    for (std::size_t i = 0; i < time.length(); ++i) {
        row(text, time[i], analysis.signal[i], analysis.roundTrip.rebuilt[i]);
    }
    return text;
}

std::string spectrumCsv(Analysis const& analysis) {
    BandSpectrum const& band = analysis.band;
    std::string text = "frequency_Hz,before_dBuV,insertion_loss_dB,after_dBuV,limit_dBuV\n";
    for (std::size_t i = 0; i < band.frequency.length(); ++i) {
        row(text, band.frequency[i], band.before[i], band.insertionLoss[i], band.after[i], band.limit[i]);
    }
    return text;
}

std::string limitCsv(Analysis const& analysis) {
    std::string text = "frequency_Hz,limit_dBuV\n";
    for (std::size_t i = 0; i < analysis.limit.frequency().length(); ++i) {
        row(text, analysis.limit.frequency()[i], analysis.limit.level()[i]);
    }
    return text;
}

std::string harmonicsCsv(Analysis const& analysis) {
    std::string text =
        "order,frequency_Hz,amplitude_V,before_dBuV,insertion_loss_dB,after_dBuV,limit_dBuV,margin_dB\n";
    for (Harmonic const& harmonic : analysis.harmonics) {
        row(text, harmonic.order, harmonic.frequency, harmonic.amplitude, harmonic.before,
            harmonic.insertionLoss, harmonic.after, harmonic.limit, harmonic.margin());
    }
    return text;
}

std::string capacitorCsv(CapacitorAnalysis const& capacitor) {
    std::string text = "frequency_Hz,resistance_ohm,reactance_ohm,free_resistance_ohm,free_reactance_ohm,"
                       "constrained_resistance_ohm,constrained_reactance_ohm\n";
    for (std::size_t i = 0; i < capacitor.impedance.frequency.size(); ++i) {
        double const frequency = capacitor.impedance.frequency[i];
        std::complex<double> const measured = capacitor.impedance.value[i];
        std::complex<double> const free = capacitor.free.model.impedance(frequency);
        std::complex<double> const constrained = capacitor.constrained.model.impedance(frequency);
        row(text, frequency, measured.real(), measured.imag(), free.real(), free.imag(), constrained.real(),
            constrained.imag());
    }
    return text;
}

std::string summaryCsv(Analysis const& analysis) {
    std::string text = "quantity,value,unit\n";
    quantity(text, "samples", static_cast<double>(analysis.grid.samples), "1");
    quantity(text, "periods", static_cast<double>(analysis.grid.periods), "1");
    quantity(text, "sample_interval", analysis.grid.interval, "s");
    quantity(text, "mean", analysis.mean, analysis.unit);
    quantity(text, "round_trip_error", analysis.roundTrip.largestError, analysis.unit);
    quantity(text, "least_margin_before",
             std::ranges::min_element(analysis.harmonics, {}, &Harmonic::marginBefore)->marginBefore(), "dB");
    quantity(text, "least_margin_after",
             std::ranges::min_element(analysis.harmonics, {}, &Harmonic::margin)->margin(), "dB");
    if (analysis.capacitor) {
        auto const fit = [&](std::string const& name, CapacitorFit const& result) {
            quantity(text, (name + "_esr").c_str(), result.model.resistance, "ohm");
            quantity(text, (name + "_esl").c_str(), result.model.inductance, "H");
            quantity(text, (name + "_capacitance").c_str(), result.model.capacitance, "F");
            quantity(text, (name + "_residual").c_str(), result.rmsResidual, "ohm");
        };
        fit("free", analysis.capacitor->free);
        fit("constrained", analysis.capacitor->constrained);
    }
    return text;
}

} // namespace ConverterEmi

#include "Results.h"

#include <common/CsvTable.h>
#include <common/Gnuplot.h>
#include <common/OutputFolder.h>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <iterator>

namespace ConverterEmi {

namespace {

using Examples::appendRow;

/// The plots' names.
std::vector<std::string> const plots{"waveform", "spectrum"};

void quantity(std::string& text, char const* name, double value, char const* unit) {
    fmt::format_to(std::back_inserter(text), "{},{},{}\n", name, value, unit);
}

/// The resampled and the rebuilt signal over time.
std::string waveformCsv(Analysis const& analysis) {
    std::string text = fmt::format("time_s,signal_{0},rebuilt_{0}\n", analysis.unit);
    Vector2 const time = analysis.grid.times();
    for (std::size_t i = 0; i < time.length(); ++i) {
        appendRow(text, time[i], analysis.signal[i], analysis.roundTrip.rebuilt[i]);
    }
    return text;
}

/// Levels at every bin of the band.
std::string spectrumCsv(Analysis const& analysis) {
    BandSpectrum const& band = analysis.band;
    std::string text = analysis.hasFilter
                           ? "frequency_Hz,before_dBuV,insertion_loss_dB,after_dBuV,limit_dBuV\n"
                           : "frequency_Hz,before_dBuV,limit_dBuV\n";
    for (std::size_t i = 0; i < band.frequency.length(); ++i) {
        if (analysis.hasFilter) {
            appendRow(text, band.frequency[i], band.before[i], band.insertionLoss[i], band.after[i],
                      band.limit[i]);
        } else {
            appendRow(text, band.frequency[i], band.before[i], band.limit[i]);
        }
    }
    return text;
}

/// Corners of the limit line in the band.
std::string limitCsv(Analysis const& analysis) {
    std::string text = "frequency_Hz,limit_dBuV\n";
    for (std::size_t i = 0; i < analysis.limit.frequency().length(); ++i) {
        appendRow(text, analysis.limit.frequency()[i], analysis.limit.level()[i]);
    }
    return text;
}

/// Levels and margins at the harmonics.
std::string harmonicsCsv(Analysis const& analysis) {
    std::string text = analysis.hasFilter
                           ? "order,frequency_Hz,amplitude_V,before_dBuV,insertion_loss_dB,"
                             "after_dBuV,limit_dBuV,margin_dB\n"
                           : "order,frequency_Hz,amplitude_V,before_dBuV,limit_dBuV,margin_dB\n";
    for (Harmonic const& harmonic : analysis.harmonics) {
        if (analysis.hasFilter) {
            appendRow(text, harmonic.order, harmonic.frequency, harmonic.amplitude, harmonic.before,
                      harmonic.insertionLoss, harmonic.after, harmonic.limit, harmonic.margin());
        } else {
            appendRow(text, harmonic.order, harmonic.frequency, harmonic.amplitude, harmonic.before,
                      harmonic.limit, harmonic.margin());
        }
    }
    return text;
}

/// The capacitor's impedance, measured and by both models.
std::string capacitorCsv(CapacitorAnalysis const& capacitor) {
    std::string text = "frequency_Hz,resistance_ohm,reactance_ohm,free_resistance_ohm,free_reactance_ohm,"
                       "constrained_resistance_ohm,constrained_reactance_ohm\n";
    for (std::size_t i = 0; i < capacitor.impedance.frequency.size(); ++i) {
        double const frequency = capacitor.impedance.frequency[i];
        std::complex<double> const measured = capacitor.impedance.value[i];
        std::complex<double> const free = capacitor.free.model.impedance(frequency);
        std::complex<double> const constrained = capacitor.constrained.model.impedance(frequency);
        appendRow(text, frequency, measured.real(), measured.imag(), free.real(), free.imag(),
                  constrained.real(), constrained.imag());
    }
    return text;
}

/// Single figures: quantity, value, unit.
std::string summaryCsv(Analysis const& analysis) {
    std::string text = "quantity,value,unit\n";
    quantity(text, "samples", static_cast<double>(analysis.grid.samples), "1");
    quantity(text, "periods", static_cast<double>(analysis.grid.periods), "1");
    quantity(text, "sample_interval", analysis.grid.interval, "s");
    quantity(text, "mean", analysis.mean, analysis.unit);
    quantity(text, "round_trip_error", analysis.roundTrip.largestError, analysis.unit);
    quantity(text, "least_margin_before",
             std::ranges::min_element(analysis.harmonics, {}, &Harmonic::marginBefore)->marginBefore(), "dB");
    if (analysis.hasFilter) {
        quantity(text, "least_margin_after",
                 std::ranges::min_element(analysis.harmonics, {}, &Harmonic::margin)->margin(), "dB");
    }
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

/// A range of levels that holds every harmonic and the limit, in whole steps of the axis.
struct LevelRange {
    double floor;
    double ceiling;
};

LevelRange levelRange(std::vector<Harmonic> const& harmonics) {
    constexpr double step = 20.0;
    constexpr double lowest = -60.0; // what is weaker is of no interest, and may be minus infinity
    LevelRange range{0.0, step};
    for (Harmonic const& harmonic : harmonics) {
        range.floor = std::min({range.floor, harmonic.before, harmonic.after});
        range.ceiling = std::max({range.ceiling, harmonic.before, harmonic.after, harmonic.limit});
    }
    return {step * std::floor(std::max(range.floor, lowest) / step), step * std::ceil(range.ceiling / step)};
}

/// The gnuplot commands for both plots.
std::string plotCommands(Settings const& settings, Analysis const& analysis) {
    // Three periods show the shape; all of them would be a solid block.
    std::size_t const periods = std::min<std::size_t>(3, analysis.grid.periods);
    LevelRange const range = levelRange(analysis.harmonics);
    char const* const filtered =
        R"(         "harmonics.csv" every ::1 using ($2 / 1e6):6 with linespoints pointtype 5 pointsize 0.6 \
             linecolor rgb "#0060ad" title "after the filter", \
)";
    return fmt::format(
        R"(
    set output "waveform." . format
    set title "Resampled waveform, {shownPeriods} of {periods} switching periods"
    set xlabel "time / µs"
    set ylabel "signal / {unit}"
    unset logscale
    set xtics auto
    set xrange [0:{shownTime}]
    set ytics auto
    set yrange [*:*]
    set offsets 0, 0, graph 0.05, graph 0.05
    plot "waveform.csv" every ::1 using (($1 - {start}) * 1e6):2 with lines linewidth 2 \
        linecolor rgb "#0060ad" title {signal}

    set output "spectrum." . format
    set title "Conducted emission (RMS) at the harmonics of {frequency:g} kHz"
    set xlabel "frequency / MHz"
    set ylabel "level / dBµV"
    set logscale x 10
    set xtics (0.01, 0.02, 0.05, 0.1, 0.2, 0.5, 1, 2, 5, 10, 20, 50, 100, 200, 500)
    set xrange [{bandStart}:{bandStop}]
    set ytics 20
    set yrange [{floor}:{ceiling}]
    set offsets 0, 0, 0, 0
    plot "harmonics.csv" every ::1 using ($2 / 1e6):4 with linespoints pointtype 7 pointsize 0.6 \
             linecolor rgb "#b0202a" title "{before}", \
{filtered}         "limit.csv" every ::1 using ($1 / 1e6):2 with lines linewidth 3 linecolor rgb "black" \
             title "limit"
)",
        fmt::arg("shownPeriods", periods), fmt::arg("periods", analysis.grid.periods),
        fmt::arg("signal", Examples::quotedForGnuplot(settings.source.signalColumn)),
        fmt::arg("unit", analysis.unit), fmt::arg("start", analysis.grid.start),
        fmt::arg("shownTime", static_cast<double>(periods) / settings.switchingFrequency * 1e6),
        fmt::arg("frequency", settings.switchingFrequency / 1e3),
        fmt::arg("bandStart", settings.band.start / 1e6), fmt::arg("bandStop", settings.band.stop / 1e6),
        fmt::arg("floor", range.floor), fmt::arg("ceiling", range.ceiling),
        fmt::arg("before", analysis.hasFilter ? "before the filter" : "without filter"),
        fmt::arg("filtered", analysis.hasFilter ? filtered : ""));
}

/// The names of all files that a run may write.
std::vector<std::string> everyFile() {
    std::vector<std::string> names{"summary.csv", "waveform.csv",  "spectrum.csv",
                                   "limit.csv",   "harmonics.csv", "capacitor.csv"};
    std::vector<std::string> const ofPlots = Examples::filesOfPlots(plots);
    names.insert(names.end(), ofPlots.begin(), ofPlots.end());
    return names;
}

constexpr std::size_t mostHarmonicsShown = 20;

template<class... Arguments>
void line(std::string& text, fmt::format_string<Arguments...> format, Arguments&&... arguments) {
    fmt::format_to(std::back_inserter(text), format, std::forward<Arguments>(arguments)...);
    text += '\n';
}

/// The harmonics with the least margins, in ascending order of frequency.
std::vector<Harmonic> mostCritical(std::vector<Harmonic> harmonics) {
    auto const shown = std::min(mostHarmonicsShown, harmonics.size());
    auto const end = harmonics.begin() + static_cast<std::ptrdiff_t>(shown);
    std::ranges::partial_sort(harmonics, end, {}, &Harmonic::margin);
    harmonics.resize(shown);
    std::ranges::sort(harmonics, {}, &Harmonic::order);
    return harmonics;
}

void addHarmonics(std::string& text, std::vector<Harmonic> const& harmonics, bool hasFilter) {
    if (hasFilter) {
        line(text, "  {:>5} {:>13} {:>12} {:>15} {:>12} {:>10} {:>10}", "order", "frequency/MHz",
             "before/dBuV", "filter loss/dB", "after/dBuV", "limit/dBuV", "margin/dB");
    } else {
        line(text, "  {:>5} {:>13} {:>12} {:>10} {:>10}", "order", "frequency/MHz", "level/dBuV",
             "limit/dBuV", "margin/dB");
    }
    for (Harmonic const& harmonic : harmonics) {
        if (hasFilter) {
            line(text, "  {:>5} {:>13.3f} {:>12.1f} {:>15.1f} {:>12.1f} {:>10.1f} {:>10.1f}", harmonic.order,
                 harmonic.frequency / 1e6, harmonic.before, harmonic.insertionLoss, harmonic.after,
                 harmonic.limit, harmonic.margin());
        } else {
            line(text, "  {:>5} {:>13.3f} {:>12.1f} {:>10.1f} {:>10.1f}", harmonic.order,
                 harmonic.frequency / 1e6, harmonic.before, harmonic.limit, harmonic.margin());
        }
    }
}

template<class Margin>
void addVerdict(std::string& text, std::string const& what, std::vector<Harmonic> const& harmonics,
                Margin margin) {
    Harmonic const& worst = *std::ranges::min_element(harmonics, {}, margin);
    double const least = (worst.*margin)();
    line(text, "  {:<16} {}, least margin {:.1f} dB at {:.3f} MHz (harmonic {})", what,
         least >= 0.0 ? "PASS" : "FAIL", least, worst.frequency / 1e6, worst.order);
}

void addFit(std::string& text, std::string const& what, CapacitorFit const& fit) {
    line(text, "  {:<26} {:>9.3f} {:>9.3f} {:>9.3f} {:>13.4f}", what, fit.model.resistance * 1e3,
         fit.model.inductance * 1e9, fit.model.capacitance * 1e6, fit.rmsResidual * 1e3);
}

} // namespace

Expected<std::vector<std::string>, ErrorCode2> writeResults(Settings const& settings,
                                                            Analysis const& analysis, Place& place) {
    return Tervane::System::guard<std::vector<std::string>>([&] {
        Examples::OutputFolder folder(settings.program.output, everyFile());
        folder.open(place).value();
        folder.write("summary.csv", summaryCsv(analysis), place).value();
        folder.write("waveform.csv", waveformCsv(analysis), place).value();
        folder.write("spectrum.csv", spectrumCsv(analysis), place).value();
        folder.write("limit.csv", limitCsv(analysis), place).value();
        folder.write("harmonics.csv", harmonicsCsv(analysis), place).value();
        if (analysis.capacitor) {
            folder.write("capacitor.csv", capacitorCsv(*analysis.capacitor), place).value();
        }
        if (settings.program.plots) {
            Examples::showStep("drawing the plots");
            Examples::drawPlots(folder, plots, plotCommands(settings, analysis), place).value();
        }
        folder.commit(place).value();
        return folder.names();
    });
}

std::string formatReport(Settings const& settings, Analysis const& analysis,
                         std::vector<std::string> const& files) {
    Grid const& grid = analysis.grid;
    std::string text;

    line(text, "Conducted emissions of a switching converter");
    line(text, "");
    line(text, "Record             {}, column {}, {} samples", settings.source.file.string(),
         settings.source.signalColumn, analysis.recordLength);
    line(text, "Analysed           {} switching periods at {:.3f} kHz, {:.3f} us; mean {:.4g} {}",
         grid.periods, settings.switchingFrequency / 1e3, grid.duration() * 1e6, analysis.mean,
         analysis.unit);
    line(text, "Resampled to       {} samples, {:.4f} ns apart; bins {:.3f} kHz apart", grid.samples,
         grid.interval * 1e9, grid.binWidth() / 1e3);
    line(text, "Window             {}; loops run {}", nameOf(settings.window),
         Examples::nameOf(settings.program.policy));
    line(text, "Round trip         waveform rebuilt from its transform within {:.2g} {}",
         analysis.roundTrip.largestError, analysis.unit);
    line(text, "Band               {:.3f} kHz to {:.3f} MHz, {} bins, {} harmonics",
         settings.band.start / 1e3, settings.band.stop / 1e6, analysis.band.frequency.length(),
         analysis.harmonics.size());
    line(text, "Limit line         {}",
         settings.limitFile ? settings.limitFile->string() : "built in, average");
    line(text, "");

    auto const shown = mostCritical(analysis.harmonics);
    line(text, "Emission at harmonics, RMS{}",
         shown.size() < analysis.harmonics.size()
             ? fmt::format(" (the {} with the least margins of {})", shown.size(), analysis.harmonics.size())
             : "");
    addHarmonics(text, shown, analysis.hasFilter);
    line(text, "");
    line(text, "Verdict");
    addVerdict(text, "without filter", analysis.harmonics, &Harmonic::marginBefore);
    if (analysis.hasFilter) {
        addVerdict(text, "with filter", analysis.harmonics, &Harmonic::margin);
    } else {
        line(text, "  {:<16} no verdict: the filter belongs to {}, and the record does not say that it does",
             "with filter", filteredCircuit);
    }
    line(text, "");

    if (analysis.capacitor) {
        auto const& capacitor = *analysis.capacitor;
        line(text, "Output capacitor, impedance at {} harmonics up to {:.3f} MHz",
             capacitor.impedance.frequency.size(), capacitor.impedance.frequency.back() / 1e6);
        line(text, "  {:<26} {:>9} {:>9} {:>9} {:>13}", "fit", "ESR/mohm", "ESL/nH", "C/uF", "residual/mohm");
        addFit(text, "ESR, ESL and C free", capacitor.free);
        addFit(text, "C held at its DC value", capacitor.constrained);
        line(text, "");
    }

    line(text, "Written to {}: {}", settings.program.output.string(), fmt::join(files, ", "));
    return text;
}

} // namespace ConverterEmi

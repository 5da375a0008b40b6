#include "Results.h"

#include <Math/Elementwise.h>
#include <Math/Reductions.h>
#include <System/Guard.h>

#include <common/CsvTable.h>
#include <common/Gnuplot.h>
#include <common/OutputFolder.h>
#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace Transient {

namespace {

constexpr char const* recordName = "record.csv";
constexpr char const* costName = "cost.csv";
constexpr char const* differencesName = "differences.csv";
constexpr char const* harmonicsName = "harmonics.csv";
constexpr char const* comparisonName = "comparison.csv";
constexpr char const* lossName = "insertion_loss.csv";
constexpr char const* comparisonPlot = "comparison";
constexpr char const* lossPlot = "insertion_loss";

// Three periods show the shape; all of them would be a solid block.
constexpr std::size_t shownPeriods = 3;

double largestDeviation(InsertionLoss const& loss) {
    return Tervane::Math::max(Tervane::Math::abs(loss.swept - loss.closed));
}

std::string costCsv(Study const& study) {
    std::string text = "form,steps,rejected,iterations,seconds,ratio_to_ngspice\n";
    for (FormRun const& run : study.forms) {
        fmt::format_to(std::back_inserter(text), "{},{},{},{},{},{}\n", run.name, run.effort.steps,
                       run.effort.rejected, run.effort.iterations, run.seconds,
                       study.comparison ? fmt::format("{}", run.seconds / study.comparison->seconds) : "");
    }
    return text;
}

std::string differencesCsv(Study const& study) {
    std::string text = "simulation,samples,signal,mean,rms,peak,harmonics_dB\n";
    for (ComparedRun const& run : study.comparison->runs) {
        for (std::size_t i = 0; i < run.signals.size(); ++i) {
            Difference const& difference = run.signals[i];
            fmt::format_to(std::back_inserter(text), "{},{},{},{},{},{},{}\n", run.name, run.samples,
                           study.columns[i], difference.mean, difference.rms, difference.peak,
                           difference.largestHarmonic());
        }
    }
    return text;
}

/// The harmonics of the first signal: one row each, one column for each simulation.
std::string harmonicsCsv(Study const& study) {
    std::string text = "order";
    for (ComparedRun const& run : study.comparison->runs) {
        text += "," + run.name + "_dB";
    }
    text += '\n';
    for (std::size_t h = 0; h < comparedHarmonics; ++h) {
        fmt::format_to(std::back_inserter(text), "{}", h + 1);
        for (ComparedRun const& run : study.comparison->runs) {
            fmt::format_to(std::back_inserter(text), ",{}", run.signals.front().harmonics[h]);
        }
        text += '\n';
    }
    return text;
}

std::string comparisonCsv(Study const& study) {
    NgspiceComparison const& comparison = *study.comparison;
    std::string text = "time_s";
    for (std::size_t i = 0; i < comparison.ours.size(); ++i) {
        fmt::format_to(std::back_inserter(text), ",{0},ngspice_{0}", study.columns[i]);
    }
    text += '\n';
    Vector2 const& times = comparison.grid.times;
    std::size_t const shown = std::min(shownPeriods, comparison.grid.periods);
    for (std::size_t row = 0; row < times.length() * shown / comparison.grid.periods; ++row) {
        fmt::format_to(std::back_inserter(text), "{}", times[row] - times[0]);
        for (std::size_t i = 0; i < comparison.ours.size(); ++i) {
            fmt::format_to(std::back_inserter(text), ",{},{}", comparison.ours[i][row],
                           comparison.theirs[i][row]);
        }
        text += '\n';
    }
    return text;
}

std::string lossCsv(InsertionLoss const& loss) {
    std::string text = "frequency_Hz,swept_dB,closed_dB\n";
    for (std::size_t i = 0; i < loss.frequency.length(); ++i) {
        Examples::appendRow(text, loss.frequency[i], loss.swept[i], loss.closed[i]);
    }
    return text;
}

/// Each signal in a column of its own: ours over ngspice's, and the difference below.
std::string comparisonCommands(Study const& study) {
    std::size_t const signals = study.comparison->ours.size();
    PeriodGrid const& grid = study.comparison->grid;
    std::size_t const shown = std::min(shownPeriods, grid.periods);
    std::string text = fmt::format(R"(
    set output "{plot}." . format
    set multiplot layout 2,{signals} columnsfirst title "Ours and ngspice's, {shown} of {periods} periods"
    set key inside top right horizontal noenhanced
    set xlabel "time / µs"
    set xrange [0:{end}]
    set lmargin 11
)",
                                   fmt::arg("plot", comparisonPlot), fmt::arg("signals", signals),
                                   fmt::arg("shown", shown), fmt::arg("periods", grid.periods),
                                   fmt::arg("end", static_cast<double>(shown) * grid.period * 1e6));
    for (std::size_t i = 0; i < signals; ++i) {
        std::string const& column = study.columns[i];
        bool const isCurrent = study.circuit.probes[i].isCurrent;
        text += fmt::format(R"(
    set ylabel "{unit}"
    set offsets 0, 0, graph 0.15, graph 0.05
    set title {title} noenhanced
    plot "{file}" every ::1 using ($1 * 1e6):{theirs} with lines linewidth 5 linecolor rgb "#f0a030" \
             title "ngspice", \
         "" every ::1 using ($1 * 1e6):{ours} with lines linewidth 2 linecolor rgb "#0060ad" title "ours"
    set ylabel "{smallUnit}"
    set title "difference"
    plot "{file}" every ::1 using ($1 * 1e6):(1e3 * (${ours} - ${theirs})) with lines linewidth 2 \
             linecolor rgb "#b0202a" notitle
)",
                            fmt::arg("unit", isCurrent ? "current / A" : "voltage / V"),
                            fmt::arg("smallUnit", isCurrent ? "current / mA" : "voltage / mV"),
                            fmt::arg("title", Examples::quotedForGnuplot(column)),
                            fmt::arg("file", comparisonName), fmt::arg("ours", 2 * i + 2),
                            fmt::arg("theirs", 2 * i + 3));
    }
    return text + R"(
    unset multiplot
    unset lmargin
    set xrange [*:*]
    set key outside top center horizontal noenhanced
)";
}

std::string lossCommands() {
    return fmt::format(R"(
    set output "{plot}." . format
    set title "Insertion loss of the input filter"
    set xlabel "frequency / MHz"
    set ylabel "loss / dB"
    set logscale x 10
    set xtics (0.2, 0.5, 1, 2, 5, 10, 20)
    set xrange [0.15:30]
    set offsets 0, 0, graph 0.05, graph 0.05
    plot "{file}" every ::1 using ($1 / 1e6):3 with lines linewidth 6 linecolor rgb "#f0a030" \
             title "closed calculation", \
         "" every ::1 using ($1 / 1e6):2 with lines linewidth 2 linecolor rgb "#0060ad" title "AC sweep"
    unset logscale
    set xtics auto
    set xrange [*:*]
)",
                       fmt::arg("plot", lossPlot), fmt::arg("file", lossName));
}

template<class... Arguments>
void line(std::string& text, fmt::format_string<Arguments...> format, Arguments&&... arguments) {
    fmt::format_to(std::back_inserter(text), format, std::forward<Arguments>(arguments)...);
    text += '\n';
}

void reportCost(std::string& text, Study const& study) {
    line(text, "{:<36} {:>9} {:>9} {:>11} {:>8} {:>8}", "Cost of a whole run", "steps", "rejected",
         "iterations", "time/s", "ratio");
    for (FormRun const& run : study.forms) {
        line(text, "  {:<34} {:>9} {:>9} {:>11} {:>8.3f} {:>8}", run.name, run.effort.steps,
             run.effort.rejected, run.effort.iterations, run.seconds,
             study.comparison ? fmt::format("{:.2f}", run.seconds / study.comparison->seconds) : "");
    }
    if (study.comparison) {
        line(text, "  {:<34} {:>9} {:>9} {:>11} {:>8.3f} {:>8.2f}", "ngspice", "", "", "",
             study.comparison->seconds, 1.0);
    }
    line(text, "");
}

void reportDifferences(std::string& text, Study const& study) {
    NgspiceComparison const& comparison = *study.comparison;
    line(text, "Differences from ngspice at reltol {:g}, steps up to {:g} ns, over {} periods",
         comparison.reference.reltol, comparison.reference.maxStep * 1e9, comparison.grid.periods);
    for (std::size_t i = 0; i < comparison.ours.size(); ++i) {
        line(text, "  {:<24} {:>9} {:>11} {:>11} {:>11} {:>13}", study.columns[i], "samples", "mean/%",
             "RMS/%", "peak/%", "harmonics/dB");
        for (ComparedRun const& run : comparison.runs) {
            Difference const& difference = run.signals[i];
            line(text, "    {:<22} {:>9} {:>11.5f} {:>11.5f} {:>11.5f} {:>13.5f}", run.name, run.samples,
                 difference.mean * 100.0, difference.rms * 100.0, difference.peak * 100.0,
                 difference.largestHarmonic());
        }
    }
    if (comparison.storedStart) {
        line(text, "  By the phase of its fundamental, the stored record starts at {:.4f} us.",
             *comparison.storedStart * 1e6);
    }
    line(text, "");
}

} // namespace

Expected<std::vector<std::string>, ErrorCode2> writeResults(Settings const& settings, Study const& study,
                                                            Place& place) {
    return Tervane::System::guard<std::vector<std::string>>([&] {
        std::vector<std::string> everyName{recordName,    costName,       differencesName,
                                           harmonicsName, comparisonName, lossName};
        std::ranges::copy(Examples::filesOfPlots({comparisonPlot, lossPlot}), std::back_inserter(everyName));
        Examples::OutputFolder folder(settings.program.output, std::move(everyName));
        std::vector<std::string> plots;
        std::string commands;
        folder.open(place).value();
        folder.write(recordName, study.record, place).value();
        folder.write(costName, costCsv(study), place).value();
        if (study.insertionLoss) {
            folder.write(lossName, lossCsv(*study.insertionLoss), place).value();
            plots.emplace_back(lossPlot);
            commands += lossCommands();
        }
        if (study.comparison) {
            folder.write(differencesName, differencesCsv(study), place).value();
            folder.write(harmonicsName, harmonicsCsv(study), place).value();
            folder.write(comparisonName, comparisonCsv(study), place).value();
            plots.emplace_back(comparisonPlot);
            commands += comparisonCommands(study);
        }
        if (settings.program.plots && !plots.empty()) {
            Examples::drawPlots(folder, plots, commands, place).value();
        }
        folder.commit(place).value();
        return folder.names();
    });
}

std::string formatReport(Settings const& settings, Study const& study,
                         std::vector<std::string> const& files) {
    TransientAnalysis const& analysis = study.circuit.analysis;
    std::string text;
    line(text, "Transient simulation of a circuit");
    line(text, "");
    line(text, "Netlist            {}", settings.netlist.string());
    line(text, "Equations          {} unknowns: {} nodes, {} sources, {} inductors; {} nonlinear elements",
         study.unknowns, study.circuit.nodes.size(), study.circuit.sources.size(),
         study.circuit.inductors.size(), study.circuit.nonlinear.size());
    line(text, "Simulated          {:g} us, from {:g} us on recorded; steps up to {:g} ns, reltol {:g}",
         analysis.stop * 1e6, analysis.start * 1e6, analysis.maxStep * 1e9,
         settings.reltol.value_or(analysis.reltol));
    line(text, "Record             {} samples of {}", study.waveforms.time.length(),
         fmt::join(study.columns, ", "));
    line(text, "");
    reportCost(text, study);
    if (study.comparison) {
        reportDifferences(text, study);
    }
    if (study.insertionLoss) {
        line(text,
             "Insertion loss     AC sweep at {} frequencies, within {:.2g} dB of the closed calculation",
             study.insertionLoss->frequency.length(), largestDeviation(*study.insertionLoss));
        line(text, "");
    }
    line(text, "Written to {}: {}", settings.program.output.string(), fmt::join(files, ", "));
    return text;
}

} // namespace Transient

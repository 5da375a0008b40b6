#include "Plots.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <fstream>

extern char** environ;

namespace ConverterEmi {

namespace {

constexpr char const* scriptName = "plots.gnuplot";
constexpr char const* logName = "gnuplot.log";

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

/// @p text as a string of gnuplot's that nothing in it can end or escape.
std::string quoted(std::string const& text) {
    std::string literal = "'";
    for (char const character : text) {
        literal += character == '\'' ? "''" : std::string(1, character);
    }
    return literal + "'";
}

std::string plotScript(Settings const& settings, Analysis const& analysis) {
    // Three periods show the shape; all of them would be a solid block.
    std::size_t const periods = std::min<std::size_t>(3, analysis.grid.periods);
    LevelRange const range = levelRange(analysis.harmonics);
    return fmt::format(
        R"(# Draws the plots from the CSV files beside this script: gnuplot {script}
set encoding utf8
set datafile separator comma
set grid linetype 1 linewidth 1 linecolor rgb "#d8d8d8"
set tics nomirror
set key outside top center horizontal noenhanced
set rmargin 4

do for [format in "svg png"] {{
    if (format eq "svg") {{
        set terminal svg size 1000,600 font "DejaVu Sans,14" background rgb "white"
    }} else {{
        set terminal pngcairo size 1500,900 font "DejaVu Sans,16" background rgb "white"
    }}

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
             linecolor rgb "#b0202a" title "before the filter", \
         "harmonics.csv" every ::1 using ($2 / 1e6):6 with linespoints pointtype 5 pointsize 0.6 \
             linecolor rgb "#0060ad" title "after the filter", \
         "limit.csv" every ::1 using ($1 / 1e6):2 with lines linewidth 3 linecolor rgb "black" \
             title "limit"
}}
)",
        fmt::arg("script", scriptName), fmt::arg("shownPeriods", periods),
        fmt::arg("periods", analysis.grid.periods), fmt::arg("signal", quoted(settings.source.signalColumn)),
        fmt::arg("unit", analysis.unit), fmt::arg("start", analysis.grid.start),
        fmt::arg("shownTime", static_cast<double>(periods) / settings.switchingFrequency * 1e6),
        fmt::arg("frequency", settings.switchingFrequency / 1e3),
        fmt::arg("bandStart", settings.band.start / 1e6), fmt::arg("bandStop", settings.band.stop / 1e6),
        fmt::arg("floor", range.floor), fmt::arg("ceiling", range.ceiling));
}

/// Runs gnuplot on the script in @p folder; whether it succeeded.
bool runGnuplot(std::filesystem::path const& folder) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, logName, O_WRONLY | O_CREAT, 0644);
    std::string program = "gnuplot";
    std::string script = scriptName;
    char* const arguments[] = {program.data(), script.data(), nullptr};
    pid_t child = 0;
    int const failed = posix_spawnp(&child, program.c_str(), &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    return failed == 0 && waitpid(child, &status, 0) == child && WIFEXITED(status)
           && WEXITSTATUS(status) == 0;
}

} // namespace

Expected<void, ErrorCode2> drawPlots(Settings const& settings, Analysis const& analysis, OutputFolder& folder,
                                     Place& place) {
    if (auto const written = folder.write(scriptName, plotScript(settings, analysis), place); !written) {
        return written.error();
    }
    if (!runGnuplot(folder.temporary())) {
        place = {};
        std::ifstream log(folder.temporary() / logName);
        std::getline(log, place.detail);
        return Failure::PlotNotDrawn;
    }
    for (char const* plot : {"waveform.svg", "waveform.png", "spectrum.svg", "spectrum.png"}) {
        if (!std::filesystem::exists(folder.temporary() / plot)) {
            place = {};
            return Failure::PlotNotDrawn;
        }
        folder.add(plot);
    }
    return {};
}

} // namespace ConverterEmi

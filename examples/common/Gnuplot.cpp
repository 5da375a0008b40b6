#include "Gnuplot.h"

#include "ChildProcess.h"

#include <fstream>

namespace Examples {

namespace {

constexpr char const* scriptName = "plots.gnuplot";
constexpr char const* logName = "gnuplot.log";

constexpr char const* scriptStart =
    R"(# Draws the plots from the CSV files beside this script: gnuplot plots.gnuplot
set encoding utf8
set datafile separator comma
set grid linetype 1 linewidth 1 linecolor rgb "#d8d8d8"
set tics nomirror
set key outside top center horizontal noenhanced
set rmargin 4

do for [format in "svg png"] {
    if (format eq "svg") {
        set terminal svg size 1000,600 font "DejaVu Sans,14" background rgb "white"
    } else {
        set terminal pngcairo size 1500,900 font "DejaVu Sans,16" background rgb "white"
    }
)";

} // namespace

std::string quotedForGnuplot(std::string const& text) {
    std::string literal = "'";
    for (char const character : text) {
        literal += character == '\'' ? "''" : std::string(1, character);
    }
    return literal + "'";
}

std::vector<std::string> filesOfPlots(std::vector<std::string> const& plots) {
    std::vector<std::string> files{scriptName};
    for (std::string const& plot : plots) {
        files.insert(files.end(), {plot + ".svg", plot + ".png"});
    }
    return files;
}

Expected<void, ErrorCode2> drawPlots(OutputFolder& folder, std::vector<std::string> const& plots,
                                     std::string const& commands, Place& place) {
    if (auto const written = folder.write(scriptName, scriptStart + commands + "}\n", place); !written) {
        return written.error();
    }
    if (!runChild(folder.temporary(), {"gnuplot", scriptName}, logName).succeeded) {
        place = {};
        std::ifstream log(folder.temporary() / logName);
        std::getline(log, place.detail);
        return FileFailure::PlotNotDrawn;
    }
    for (std::string const& file : filesOfPlots(plots)) {
        if (!std::filesystem::exists(folder.temporary() / file)) {
            place = {};
            return FileFailure::PlotNotDrawn;
        }
        if (file != scriptName) {
            folder.add(file);
        }
    }
    return {};
}

} // namespace Examples

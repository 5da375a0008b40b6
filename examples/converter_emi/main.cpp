/// @file
/// Conducted emissions of a switching converter, from a simulated or measured record to a verdict.
///
/// The chain stands in Analysis.cpp, one step per file beside it. This file only sets the library up, runs
/// the chain and hands its results on.

#include "Analysis.h"
#include "OutputFolder.h"
#include "Plots.h"
#include "Report.h"
#include "Settings.h"
#include "Tables.h"

#include <fmt/format.h>

#include <cstdlib>

namespace {

using namespace ConverterEmi;

/// Writes all files, or none.
Expected<std::vector<std::string>, ErrorCode2> writeResults(Settings const& settings,
                                                            Analysis const& analysis, Place& place) {
    return Tervane::System::guard<std::vector<std::string>>([&] {
        OutputFolder folder(settings.output);
        folder.open(place).value();
        folder.write("summary.csv", summaryCsv(analysis), place).value();
        folder.write("waveform.csv", waveformCsv(analysis), place).value();
        folder.write("spectrum.csv", spectrumCsv(analysis), place).value();
        folder.write("limit.csv", limitCsv(analysis), place).value();
        folder.write("harmonics.csv", harmonicsCsv(analysis), place).value();
        if (analysis.capacitor) {
            folder.write("capacitor.csv", capacitorCsv(*analysis.capacitor), place).value();
        }
        if (settings.plots) {
            drawPlots(settings, analysis, folder, place).value();
        }
        folder.commit(place).value();
        return folder.names();
    });
}

/// Analyses, writes the files and returns the report.
Expected<std::string, ErrorCode2> run(Settings const& settings, Place& place) {
    auto const analysis = analyse(settings, place);
    if (!analysis) {
        return analysis.error();
    }
    auto const files = writeResults(settings, *analysis, place);
    if (!files) {
        return files.error();
    }
    return formatReport(settings, *analysis, *files);
}

} // namespace

int main(int argc, char** argv) {
    CommandLine const commandLine = parseCommandLine(argc, argv);
    if (commandLine.exitCode) {
        return *commandLine.exitCode;
    }
    Tervane::Math::setExecutionPolicy(commandLine.settings.policy);

    Place place;
    auto const report = run(commandLine.settings, place);
    if (!report) {
        fmt::print(stderr, "converter_emi: {}\n", describe(place, report.error()));
        return EXIT_FAILURE;
    }
    fmt::print("{}", *report);
    return EXIT_SUCCESS;
}

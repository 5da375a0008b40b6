/// @file
/// Conducted emissions of a switching converter, from a simulated or measured record to a verdict.
///
/// The chain stands in Analysis.cpp; this file only runs it and hands its results on.

#include "Analysis.h"
#include "Results.h"
#include "Settings.h"

#include <common/Program.h>

int main(int argc, char** argv) {
    using namespace ConverterEmi;

    CommandLine const commandLine = parseCommandLine(argc, argv);
    if (commandLine.exitCode) {
        return *commandLine.exitCode;
    }
    Settings const& settings = commandLine.settings;
    return Examples::runProgram("converter_emi", settings.program, [&](Place& place) {
        // value() leaves with the error, which runProgram reports.
        Analysis const analysis = analyse(settings, place).value();
        Examples::showStep("writing the results");
        auto const files = writeResults(settings, analysis, place).value();
        return Expected<std::string, ErrorCode2>(formatReport(settings, analysis, files));
    });
}

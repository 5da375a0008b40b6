/// @file
/// Transient simulation of a circuit, from a netlist to a record.
///
/// Netlist.cpp reads the circuit, NodalEquations.cpp makes its equations, Gear.cpp steps through time, and
/// Newton.cpp solves each step on the library. This file only runs them and hands the results on.

#include "Results.h"
#include "Settings.h"
#include "Study.h"

int main(int argc, char** argv) {
    using namespace Transient;

    CommandLine const commandLine = parseCommandLine(argc, argv);
    if (commandLine.exitCode) {
        return *commandLine.exitCode;
    }
    Settings const& settings = commandLine.settings;
    return Examples::runProgram("transient", settings.program, [&](Place& place) {
        // value() leaves with the error, which runProgram reports.
        Study const study = runStudy(settings, place).value();
        Examples::showStep("writing the results");
        auto const files = writeResults(settings, study, place).value();
        return Expected<std::string, ErrorCode2>(formatReport(settings, study, files));
    });
}

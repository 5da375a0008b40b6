#pragma once

/// @file
/// What the user can choose.

#include <common/Program.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Transient {

struct Settings {
    Examples::ProgramSettings program{.output = "output/transient"};
    std::filesystem::path netlist;
    std::vector<std::string> columns; ///< names for the probes in the record; empty: from the netlist
    std::optional<double> reltol;     ///< in place of the netlist's
    std::vector<std::string> insertionLossNodes; ///< from, to; empty: no AC sweep
    bool compare = false;                        ///< with ngspice
    std::filesystem::path storedRecord;          ///< to compare with, too; may be empty
};

struct CommandLine {
    Settings settings;
    std::optional<int> exitCode; ///< set when the program is to end at once
};

CommandLine parseCommandLine(int argc, char const* const* argv);

} // namespace Transient

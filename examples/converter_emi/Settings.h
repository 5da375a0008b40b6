#pragma once

/// @file
/// What the user can choose, and the command line that says it.

#include "Emission.h"
#include "Record.h"

#include <common/Program.h>

#include <cstddef>
#include <filesystem>
#include <optional>

namespace ConverterEmi {

struct Settings {
    RecordSource source;
    double switchingFrequency = 400e3; ///< Hz
    WindowKind window = WindowKind::Hann;
    Band band{150e3, 30e6};
    std::optional<std::filesystem::path> limitFile; ///< the built-in line when absent
    std::optional<std::size_t> samples;             ///< of the resampled record; chosen when absent
    std::size_t fitHarmonics = 5;                   ///< whose impedances the capacitor fit uses
    double dcCapacitance = 22e-6;                   ///< F, of the output capacitor
    Examples::ProgramSettings program{.output = "output/converter_emi"};
};

/// What the command line asks for: to go on with these settings, or to end at once with this exit code (after
/// `--help`, or a wrong option that has been reported).
struct CommandLine {
    std::optional<int> exitCode;
    Settings settings;
};

CommandLine parseCommandLine(int argc, char const* const* argv);

/// The name of a window on the command line and in the report.
char const* nameOf(WindowKind window);

} // namespace ConverterEmi

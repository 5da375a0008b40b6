#pragma once

/// @file
/// What stands around an example's own work: settings that all have, progress, report and exit code.

#include "Failure.h"

#include <Math/ExecutionPolicy.h>

#include <filesystem>
#include <functional>
#include <string>

namespace Examples {

/// What the user can choose in every example.
struct ProgramSettings {
    Tervane::Math::AlgorithmExecutionPolicy policy = Tervane::Math::ParallelUnsequenced;
    std::filesystem::path output; ///< folder; a relative path counts from the current folder
    bool plots = true;
};

/// The name of an execution policy on the command line and in reports.
char const* nameOf(Tervane::Math::AlgorithmExecutionPolicy policy);

/// Does a program's work and returns the exit code.
///
/// Sets the execution policy, runs @p work, and writes the report that it returns to standard output.
/// When the work fails or throws, or the report cannot be written, one line on standard error says why.
int runProgram(std::string const& name, ProgramSettings const& settings,
               std::function<Expected<std::string, ErrorCode2>(Place& place)> const& work);

/// Says what the program is doing now. The user sees it when standard error is a terminal and the program has
/// run for more than two seconds.
void showStep(std::string const& step);

} // namespace Examples

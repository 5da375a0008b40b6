#pragma once

/// @file
/// Another program, run in a folder.

#include <filesystem>
#include <string>
#include <vector>

namespace Examples {

/// How another program ended.
struct ChildRun {
    bool succeeded; ///< it could be started, and its exit code was 0
    double seconds; ///< the processor time that it took
};

/// Runs a program in @p folder and waits for its end.
///
/// Nothing of what it says reaches this program's streams: its standard output is dropped, and its standard
/// error goes into a file.
///
/// @param arguments the program's name, to be found in PATH, then its arguments
/// @param log the file's name
ChildRun runChild(std::filesystem::path const& folder, std::vector<std::string> arguments,
                  std::string const& log);

} // namespace Examples

#pragma once

/// @file
/// The part of the command line that the examples share. Includes CLI11; only an example's own command line
/// needs it.

#include "CsvTable.h"
#include "Program.h"

#include <CLI/CLI.hpp>

#include <map>
#include <optional>
#include <string>

namespace Examples {

/// The name that stands for @p value in a table of names on the command line.
template<class Value>
char const* nameIn(std::map<std::string, Value> const& names, Value value) {
    for (auto const& [name, named] : names) {
        if (named == value) {
            return name.c_str();
        }
    }
    return "?";
}

/// A check for CLI11: empty when @p text is a positive number, else what is wrong with it.
inline std::string isPositive(std::string const& text) {
    auto const number = parseNumber(text);
    return number && *number > 0.0 ? "" : "'" + text + "' is not a positive number";
}

/// Sets how the help looks and that the last of several equal options counts. Comes before the options.
void setStyle(CLI::App& app);

/// Adds --policy, --output and --no-plots.
void addProgramOptions(CLI::App& app, ProgramSettings& settings);

/// Parses the command line; an exit code when the program is to end at once (after `--help`, or a wrong
/// option, which has been reported).
std::optional<int> parse(CLI::App& app, int argc, char const* const* argv);

} // namespace Examples

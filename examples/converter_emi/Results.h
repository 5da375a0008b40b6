#pragma once

/// @file
/// What the program hands out: a report on the terminal, tables and plots.

#include "Analysis.h"
#include "Settings.h"

#include <string>
#include <vector>

namespace ConverterEmi {

/// Writes all files of a run into the output folder, or none, and returns their names.
Expected<std::vector<std::string>, ErrorCode2> writeResults(Settings const& settings,
                                                            Analysis const& analysis, Place& place);

/// The whole report: at most 60 lines, every number with its unit.
///
/// @param files the names of the files that were written into the output folder
std::string formatReport(Settings const& settings, Analysis const& analysis,
                         std::vector<std::string> const& files);

} // namespace ConverterEmi

#pragma once

/// @file
/// The report on the terminal.

#include "Analysis.h"
#include "Settings.h"

#include <string>
#include <vector>

namespace ConverterEmi {

/// The whole report: at most 60 lines, every number with its unit.
///
/// @param files the names of the files that were written into the output folder
std::string formatReport(Settings const& settings, Analysis const& analysis,
                         std::vector<std::string> const& files);

} // namespace ConverterEmi

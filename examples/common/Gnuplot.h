#pragma once

/// @file
/// Plots, drawn by gnuplot from the CSV files of an output folder.

#include "OutputFolder.h"

#include <string>
#include <vector>

namespace Examples {

/// @p text as a string of gnuplot's that nothing in it can end or escape.
std::string quotedForGnuplot(std::string const& text);

/// Draws plots, each as SVG and PNG, into the folder's temporary one, beside the CSV files there.
///
/// The script for gnuplot, plots.gnuplot, stays with the plots, so that they can be drawn anew in another
/// style.
///
/// @param plots the names of the plots, without extension
/// @param commands gnuplot commands that draw every plot once; each plot starts with
///        `set output "NAME." . format`
Expected<void, ErrorCode2> drawPlots(OutputFolder& folder, std::vector<std::string> const& plots,
                                     std::string const& commands, Place& place);

/// The names of all files that drawPlots() writes for these plots.
std::vector<std::string> filesOfPlots(std::vector<std::string> const& plots);

} // namespace Examples

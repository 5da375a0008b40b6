#pragma once

/// @file
/// What the program gives out: the record, tables, plots and a report.

#include "Study.h"

namespace Transient {

/// Writes all files, or none; their names.
Expected<std::vector<std::string>, ErrorCode2> writeResults(Settings const& settings, Study const& study,
                                                            Place& place);

/// What happened, for a person.
std::string formatReport(Settings const& settings, Study const& study, std::vector<std::string> const& files);

} // namespace Transient

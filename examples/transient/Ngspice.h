#pragma once

/// @file
/// What the circuit simulator ngspice makes of a netlist: the reference for results and cost.

#include "Gear.h"

#include <filesystem>
#include <optional>

namespace Transient {

/// A run of ngspice.
struct NgspiceRun {
    Waveforms waveforms;
    double seconds; ///< processor time of the whole run
};

/// Runs ngspice on the netlist that @p circuit was read from.
///
/// @param analysis when given, its relative tolerance and largest step take the place of the netlist's
Expected<NgspiceRun, ErrorCode2> runNgspice(std::filesystem::path const& netlist, Circuit const& circuit,
                                            std::optional<TransientAnalysis> const& analysis, Place& place);

} // namespace Transient

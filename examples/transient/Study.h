#pragma once

/// @file
/// All that one run of the program does: both forms of the simulation, the AC sweep, and the comparison.

#include "Comparison.h"
#include "Gear.h"
#include "Settings.h"

#include <optional>
#include <string>
#include <vector>

namespace Transient {

/// One form of the simulation, and what it cost.
struct FormRun {
    std::string name;
    Effort effort;
    double seconds; ///< processor time from the netlist to the record's text
};

/// How one simulation differs from the reference.
struct ComparedRun {
    std::string name;
    std::size_t samples;
    std::vector<Difference> signals; ///< for each compared signal
};

/// The first of the netlist's quantities are compared: the emission and the output.
inline constexpr std::size_t mostComparedSignals = 2;

struct NgspiceComparison {
    double seconds;                    ///< processor time of ngspice's run on the netlist as it is
    TransientAnalysis reference;       ///< how tight the reference is
    std::vector<ComparedRun> runs;     ///< the program's own run at the chosen tolerance first
    PeriodGrid grid;                   ///< where all are compared
    std::vector<Vector2> ours;         ///< the compared signals on the grid
    std::vector<Vector2> theirs;       ///< the reference's
    std::optional<double> storedStart; ///< s, the stored record's start, which it does not say itself
};

struct InsertionLoss {
    Vector2 frequency; ///< Hz
    Vector2 swept;     ///< dB, from the netlist's linearised equations
    Vector2 closed;    ///< dB, as the main example calculates it
};

struct Study {
    Circuit circuit;
    std::size_t unknowns;
    std::vector<FormRun> forms;
    std::vector<std::string> columns; ///< names of the record's columns behind the time
    Waveforms waveforms;
    std::string record; ///< the record as CSV
    std::optional<InsertionLoss> insertionLoss;
    std::optional<NgspiceComparison> comparison;
};

Expected<Study, ErrorCode2> runStudy(Settings const& settings, Place& place);

} // namespace Transient

#pragma once

/// @file
/// Integration over time by Gear's method of second order with steps of variable size.
///
/// C. W. Gear, Simultaneous numerical solution of differential-algebraic equations, IEEE Transactions on
/// Circuit Theory 18 (1971) 89-95.

#include "Newton.h"

#include <functional>
#include <string>
#include <vector>

namespace Transient {

/// Which form of Newton's method solves the steps.
enum class NewtonForm { Whole, Ports };

/// The probes' values at the steps from the analysis' start on.
struct Waveforms {
    Vector2 time;                ///< s
    std::vector<Vector2> values; ///< V or A, for each probe
};

/// How often what was done.
struct Effort {
    std::size_t steps = 0;      ///< accepted
    std::size_t rejected = 0;   ///< because of their truncation error, or because Newton's method failed
    std::size_t iterations = 0; ///< of Newton's method
};

struct Simulation {
    Waveforms waveforms;
    Effort effort;
};

/// Simulates from 0 to the analysis' end.
///
/// The steps between two corners of the sources are an even part of their distance, halved as often as the
/// truncation error asks for, and doubled again where a step of twice the size would start on its own grid.
/// So a periodic circuit meets few step sizes again and again. At a corner the method starts anew with its
/// first order.
///
/// @param progress is called with the time, in s, at each corner of the sources
Expected<Simulation, ErrorCode2> simulate(Circuit const& circuit, NewtonForm form,
                                          std::function<void(double)> const& progress, Place& place);

} // namespace Transient

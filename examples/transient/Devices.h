#pragma once

/// @file
/// What the elements of a circuit do by themselves: sources over time, and currents over voltages.

#include <vector>

namespace Transient {

/// A voltage that is constant, or repeats the trapezoidal pulse of SPICE's `PULSE`.
struct Waveform {
    double low = 0.0;    ///< V, at the start; the value of a constant voltage
    double high = 0.0;   ///< V
    double delay = 0.0;  ///< s, of the first corner
    double rise = 0.0;   ///< s
    double fall = 0.0;   ///< s
    double width = 0.0;  ///< s, between rise and fall
    double period = 0.0; ///< s; 0 for a constant voltage

    double at(double time) const;

    /// Appends the times of all corners from 0 up to @p stop.
    void appendCorners(double stop, std::vector<double>& corners) const;
};

/// A device's equations about one voltage: what Newton's method needs.
struct Linearised {
    double current = 0.0;          ///< A
    double conductance = 0.0;      ///< S, the current's derivative by the branch's voltage
    double transconductance = 0.0; ///< S, by the gate's voltage
    double charge = 0.0;           ///< C
    double capacitance = 0.0;      ///< F, the charge's derivative by the branch's voltage
};

/// A junction diode. Its series resistance is an element of its own.
///
/// L. W. Nagel, SPICE2: A computer program to simulate semiconductor circuits, Memorandum ERL-M520,
/// University of California, Berkeley 1975, has the equations and the limiting.
struct Diode {
    double saturationCurrent = 1e-14; ///< A, IS
    double emissionCoefficient = 1.0; ///< N
    double junctionCapacitance = 0.0; ///< F at no voltage, CJO
    double junctionPotential = 1.0;   ///< V, VJ
    double gradingCoefficient = 0.5;  ///< M

    Linearised at(double voltage) const;

    /// The voltage to go on with where Newton's method proposes @p proposed after @p last: where the
    /// exponential is steep, a step along the logarithm of the current instead.
    double limited(double proposed, double last) const;

private:
    double thermalVoltage() const;
};

/// A switch whose conductance follows the gate's voltage exponentially: G 10^(-K (1 - v(gate))).
struct Transistor {
    double conductance = 0.0; ///< S at a gate voltage of 1 V
    double decades = 0.0;     ///< by which the conductance falls down to a gate voltage of 0 V

    Linearised at(double voltage, double gateVoltage) const;
};

} // namespace Transient

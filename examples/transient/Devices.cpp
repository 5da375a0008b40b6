#include "Devices.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Transient {

namespace {

// The boundaries that SPICE has: a conductance across each junction, and the part of the junction's potential
// up to which the formula of the depletion capacitance holds.
constexpr double leastConductance = 1e-12;
constexpr double depletionLimit = 0.5;

} // namespace

double Waveform::at(double time) const {
    if (period == 0.0 || time <= delay) {
        return low;
    }
    double const phase = std::fmod(time - delay, period);
    if (phase < rise) {
        return low + (high - low) * phase / rise;
    }
    return high + (low - high) * std::clamp((phase - rise - width) / fall, 0.0, 1.0);
}

void Waveform::appendCorners(double stop, std::vector<double>& corners) const {
    if (period == 0.0) {
        return;
    }
    for (double repeats = 0.0; delay + repeats * period <= stop; repeats += 1.0) {
        double const start = delay + repeats * period;
        corners.insert(corners.end(),
                       {start, start + rise, start + rise + width, start + rise + width + fall});
    }
}

double Diode::thermalVoltage() const {
    // Boltzmann's constant times 27 degrees Celsius over the elementary charge.
    return emissionCoefficient * 1.380649e-23 * 300.15 / 1.602176634e-19;
}

Linearised Diode::at(double voltage) const {
    double const vt = thermalVoltage();
    double const exponential = saturationCurrent * std::exp(voltage / vt);
    Linearised result;
    result.current = exponential - saturationCurrent + leastConductance * voltage;
    result.conductance = exponential / vt + leastConductance;

    // Depletion charge: C = CJO (1 - v / VJ)^-M, continued by its tangent where that would grow without
    // bound.
    double const boundary = depletionLimit * junctionPotential;
    double const reach = std::min(voltage, boundary);
    double const remaining = 1.0 - reach / junctionPotential;
    double const steepness = std::pow(remaining, -gradingCoefficient);
    result.capacitance = junctionCapacitance * steepness;
    result.charge =
        junctionCapacitance * junctionPotential * (1.0 - remaining * steepness) / (1.0 - gradingCoefficient);
    if (voltage > boundary) {
        double const slope = result.capacitance * gradingCoefficient / (junctionPotential * remaining);
        double const beyond = voltage - boundary;
        result.charge += (result.capacitance + 0.5 * slope * beyond) * beyond;
        result.capacitance += slope * beyond;
    }
    return result;
}

double Diode::limited(double proposed, double last) const {
    double const vt = thermalVoltage();
    // Where the curve of the current is bent most.
    double const critical = vt * std::log(vt / (std::numbers::sqrt2 * saturationCurrent));
    if (proposed <= critical || std::abs(proposed - last) <= 2.0 * vt) {
        return proposed;
    }
    if (last <= 0.0) {
        return vt * std::log(proposed / vt);
    }
    double const ratio = 1.0 + (proposed - last) / vt;
    return ratio > 0.0 ? last + vt * std::log(ratio) : critical;
}

Linearised Transistor::at(double voltage, double gateVoltage) const {
    double const slope = decades * std::numbers::ln10;
    Linearised result;
    result.conductance = conductance * std::exp(slope * (gateVoltage - 1.0));
    result.current = result.conductance * voltage;
    result.transconductance = slope * result.current;
    return result;
}

} // namespace Transient

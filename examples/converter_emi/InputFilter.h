#pragma once

/// @file
/// Nodal analysis of the converter's input filter, between the switching cell and the measuring receiver.

#include "Failure.h"

#include <Math/Vector2.h>

#include <complex>
#include <cstddef>
#include <limits>
#include <vector>

namespace ConverterEmi {

using Tervane::Math::Vector2;

/// What a measuring receiver loads the line with, in ohms.
inline constexpr double receiverResistance = 50.0;

/// Resistance, inductance and capacitance in series, between two nodes of a network.
struct Branch {
    static constexpr int ground = -1;

    int from;                                                     ///< a node, or ground
    int to;                                                       ///< a node, or ground
    double resistance = 0.0;                                      ///< ohm
    double inductance = 0.0;                                      ///< H
    double capacitance = std::numeric_limits<double>::infinity(); ///< F; infinite when there is none

    /// In siemens, at @p angularFrequency in radians per second.
    std::complex<double> admittance(double angularFrequency) const;
};

/// A linear network with a current source at one node and a receiver at another.
struct Network {
    int nodes;    ///< how many, ground not counted
    int source;   ///< the node that the source feeds from ground
    int receiver; ///< the node whose voltage is looked at
    std::vector<Branch> branches;

    /// Volts at the receiver for each ampere of the source, at @p frequency in Hz.
    Expected<std::complex<double>, ErrorCode2> transferImpedance(double frequency) const;
};

/// The input filter of data/buck_converter.cir between the switching cell and the artificial network.
Network inputFilter();

/// By how many dB the network lowers the receiver's voltage at each frequency in Hz, compared with the
/// source's current flowing straight into the receiver's resistance.
Expected<Vector2, ErrorCode2> insertionLoss(Network const& network, Vector2 const& frequencies);

} // namespace ConverterEmi

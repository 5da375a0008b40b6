#pragma once

/// @file
/// What linear algebra says about the circuit: the input filter by nodal analysis, and the output capacitor's
/// equivalent series resistance and inductance by least squares.

#include "Emission.h"
#include "Failure.h"

#include <Math/Vector2.h>

#include <complex>
#include <cstddef>
#include <limits>
#include <vector>

namespace ConverterEmi {

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

/// The circuit that inputFilter() belongs to, as its records name it in a comment `# circuit,NAME`.
inline constexpr char const* filteredCircuit = "buck_converter.cir";

/// The input filter of data/buck_converter.cir between the switching cell and the artificial network.
Network inputFilter();

/// By how many dB the network lowers the receiver's voltage at each frequency in Hz, compared with the
/// source's current flowing straight into the receiver's resistance.
Expected<Vector2, ErrorCode2> insertionLoss(Network const& network, Vector2 const& frequencies);

/// An impedance at each of some frequencies.
struct Impedance {
    std::vector<double> frequency;           ///< Hz
    std::vector<std::complex<double>> value; ///< ohm
};

/// Resistance, inductance and capacitance in series: what a capacitor is near its resonance.
struct SeriesModel {
    double resistance = 0.0;  ///< ohm, the ESR
    double inductance = 0.0;  ///< H, the ESL
    double capacitance = 0.0; ///< F

    std::complex<double> impedance(double frequency) const; ///< ohm, at a frequency in Hz
};

/// A model and how well it keeps to the impedance.
struct CapacitorFit {
    SeriesModel model;
    double rmsResidual = 0.0; ///< ohm, over the real and imaginary parts
};

/// The quotient of voltage and current at the first @p harmonics harmonics of the switching frequency.
///
/// @param periods the number of the harmonic's bin is its order times this
Expected<Impedance, ErrorCode2> measureImpedance(Spectrum const& voltage, Spectrum const& current,
                                                 double switchingFrequency, std::size_t periods,
                                                 std::size_t harmonics, Place& place);

/// Fits all three of ESR, ESL and capacitance in the least-squares sense.
Expected<CapacitorFit, ErrorCode2> fitFreely(Impedance const& impedance);

/// Fits ESR and ESL with the capacitance held exactly at @p capacitance, in F, as measured at DC.
Expected<CapacitorFit, ErrorCode2> fitWithCapacitance(Impedance const& impedance, double capacitance);

} // namespace ConverterEmi

#pragma once

/// @file
/// Equivalent series resistance and inductance of the output capacitor, from its own voltage and current.

#include "Failure.h"
#include "Spectrum.h"

#include <Math/Vector2.h>

#include <complex>
#include <cstddef>
#include <vector>

namespace ConverterEmi {

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

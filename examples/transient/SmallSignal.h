#pragma once

/// @file
/// The circuit's response to small sinusoidal currents: an AC sweep.

#include "NodalEquations.h"

#include <complex>

namespace Transient {

/// The circuit, linearised about its operating point at time 0.
class SmallSignal {
public:
    /// Finds the operating point, by Newton's method with every capacitance open and every inductance short.
    static Expected<SmallSignal, ErrorCode2> about(Circuit const& circuit, Place& place);

    /// Volts at node @p to for each ampere that flows from ground into node @p from.
    ///
    /// The complex equations (G + jwC) v = i are solved as real ones of twice the size:
    ///
    ///     | G  -wC |  | Re v |     | Re i |
    ///     | wC   G |  | Im v |  =  | Im i |
    Expected<std::complex<double>, ErrorCode2> transferImpedance(std::size_t from, std::size_t to,
                                                                 double frequency) const;

private:
    Matrix2 _conductance;
    Matrix2 _storage;
};

} // namespace Transient

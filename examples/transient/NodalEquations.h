#pragma once

/// @file
/// The circuit's equations by modified nodal analysis.
///
/// C. W. Ho, A. E. Ruehli, P. A. Brennan, The modified nodal approach to network analysis, IEEE Transactions
/// on Circuits and Systems 22 (1975) 504-509.

#include "Netlist.h"

#include <Math/Matrix2.h>
#include <Math/Vector2.h>

#include <string>
#include <vector>

namespace Transient {

using Tervane::Math::Matrix2;
using Tervane::Math::Vector2;

/// G x + d(C x)/dt + (currents of the nonlinear elements) = b(t)
///
/// The unknowns x are the nodes' voltages, then the currents of the voltage sources and of the inductors. A
/// node's equation says that the currents out of it sum up to zero; a source's or inductor's, what its
/// voltage is.
class NodalEquations {
public:
    explicit NodalEquations(Circuit const& circuit);

    std::size_t order() const { return _conductance.rows(); }
    Matrix2 const& conductance() const { return _conductance; } ///< G
    Matrix2 const& storage() const { return _storage; }         ///< C, of capacitances and inductances

    /// C x at the start, as the elements' initial voltages and currents make it.
    Vector2 const& initialCharge() const { return _initialCharge; }

    /// b(t) into the leading order() elements of @p b.
    void sources(double time, Vector2& b) const;

    /// What unknown @p i is called: "v(NODE)" or "i(ELEMENT)".
    std::string const& name(std::size_t i) const { return _names[i]; }
    /// Whether unknown @p i is a voltage; otherwise it is a current.
    bool isVoltage(std::size_t i) const { return i < _nodes; }
    /// Where the current of voltage source @p i stands in x.
    std::size_t sourceCurrent(std::size_t i) const { return _nodes + i; }

private:
    std::size_t _nodes;
    Matrix2 _conductance;
    Matrix2 _storage;
    Vector2 _initialCharge;
    std::vector<Waveform> _waveforms;
    std::vector<std::string> _names;
};

/// @name Stamps
/// What an element adds to the equations. Ground has neither equation nor unknown: its part is left out.
/// @{
void stamp(Matrix2& matrix, int row, int column, double value);
void stamp(Vector2& vector, int row, double value);
/// An admittance @p value across @p branch.
void stampAdmittance(Matrix2& matrix, Branch const& branch, double value);
/// The derivatives of a nonlinear element's current.
void stampConductances(Matrix2& matrix, Nonlinear const& element, Linearised const& at);
/// A current @p value out of the node `from` and into the node `to`.
void stampCurrent(Vector2& vector, Branch const& branch, double value);
/// @}

/// The voltage across @p branch among the unknowns @p x.
double voltageAcross(Branch const& branch, Vector2 const& x);

} // namespace Transient

#include "InputFilter.h"

#include <Math/Elementwise.h>
#include <Math/LAPACK.h>
#include <Math/Matrix2.h>

#include <numbers>

namespace ConverterEmi {

namespace {

using Tervane::Math::Index;
using Tervane::Math::Matrix2;

/// The nodal equations (G + jB) v = i of a network, as real equations of twice the size:
///
///     | G  -B |  | Re v |     | Re i |
///     | B   G |  | Im v |  =  | Im i |
class NodalEquations {
public:
    explicit NodalEquations(int nodes)
        : _nodes(static_cast<std::size_t>(nodes)),
          _matrix(2 * _nodes, 2 * _nodes, 0.0),
          _rightHandSide(2 * _nodes) {}

    void addBranch(int from, int to, std::complex<double> admittance) {
        addAt(from, from, admittance);
        addAt(to, to, admittance);
        addAt(from, to, -admittance);
        addAt(to, from, -admittance);
    }

    /// A source of @p amperes from ground into @p node, in phase with everything's reference.
    void addSource(int node, double amperes) { _rightHandSide[static_cast<std::size_t>(node)] += amperes; }

    /// The voltage of @p node; consumes the equations.
    Expected<std::complex<double>, ErrorCode2> solveFor(int node) && {
        if (auto const solved = Tervane::Math::LAPACK::gesv(_matrix, _rightHandSide); !solved) {
            return solved.error();
        }
        auto const row = static_cast<std::size_t>(node);
        return std::complex<double>(_rightHandSide[row], _rightHandSide[row + _nodes]);
    }

private:
    void addAt(int row, int column, std::complex<double> admittance) {
        if (row == Branch::ground || column == Branch::ground) {
            return;
        }
        auto const r = static_cast<std::size_t>(row);
        auto const c = static_cast<std::size_t>(column);
        _matrix[Index(r, c)] += admittance.real();
        _matrix[Index(r, c + _nodes)] -= admittance.imag();
        _matrix[Index(r + _nodes, c)] += admittance.imag();
        _matrix[Index(r + _nodes, c + _nodes)] += admittance.real();
    }

    std::size_t _nodes;
    Matrix2 _matrix;
    Vector2 _rightHandSide;
};

} // namespace

std::complex<double> Branch::admittance(double angularFrequency) const {
    double const reactance = angularFrequency * inductance - 1.0 / (angularFrequency * capacitance);
    return 1.0 / std::complex<double>(resistance, reactance);
}

Expected<std::complex<double>, ErrorCode2> Network::transferImpedance(double frequency) const {
    NodalEquations equations(nodes);
    for (Branch const& branch : branches) {
        equations.addBranch(branch.from, branch.to, branch.admittance(2.0 * std::numbers::pi * frequency));
    }
    equations.addSource(source, 1.0);
    return std::move(equations).solveFor(receiver);
}

Network inputFilter() {
    constexpr int ground = Branch::ground;
    enum : int { line, receiver, cell, count };
    return Network{
        .nodes = count,
        .source = cell,
        .receiver = receiver,
        .branches = {
            // Artificial network: the supply's side (a supply is a short circuit to noise), and the
            // receiver's.
            {.from = line, .to = ground, .resistance = 0.1, .inductance = 5e-6},
            {.from = line, .to = receiver, .capacitance = 100e-9},
            {.from = receiver, .to = ground, .resistance = receiverResistance},
            // Line-side capacitor; choke and its winding's capacitance.
            {.from = line, .to = ground, .resistance = 8e-3, .inductance = 10e-9, .capacitance = 2.2e-6},
            {.from = line, .to = cell, .resistance = 25e-3, .inductance = 6.8e-6},
            {.from = line, .to = cell, .capacitance = 40e-12},
            // The switching cell's capacitors: electrolytic and ceramic.
            {.from = cell, .to = ground, .resistance = 0.4, .capacitance = 47e-6},
            {.from = cell, .to = ground, .resistance = 3e-3, .inductance = 1.5e-9, .capacitance = 10e-6},
        }};
}

Expected<Vector2, ErrorCode2> insertionLoss(Network const& network, Vector2 const& frequencies) {
    Vector2 ratio(frequencies.length());
    for (std::size_t i = 0; i < frequencies.length(); ++i) {
        auto const impedance = network.transferImpedance(frequencies[i]);
        if (!impedance) {
            return impedance.error();
        }
        ratio[i] = receiverResistance / std::abs(*impedance);
    }
    return 20.0 * Tervane::Math::log10(std::move(ratio));
}

} // namespace ConverterEmi

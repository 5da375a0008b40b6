#include "Circuit.h"

#include <Math/Elementwise.h>
#include <Math/LAPACK.h>
#include <Math/Matrix2.h>

#include <fmt/format.h>

#include <cmath>
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

/// Two equations per frequency, linear in the unknowns R, w0 L and 1 / (w0 C):
///
///     Re Z = R
///     Im Z = (w / w0) w0 L - (w0 / w) / (w0 C)
///
/// The reference frequency w0 turns all three unknowns into ohms of similar size, so that the columns are,
/// too.
struct FitEquations {
    explicit FitEquations(Impedance const& impedance)
        : reference(2.0 * std::numbers::pi * impedance.frequency.front()),
          matrix(2 * impedance.frequency.size(), 3, 0.0),
          rightHandSide(2 * impedance.frequency.size()) {
        for (std::size_t i = 0; i < impedance.frequency.size(); ++i) {
            double const relative = impedance.frequency[i] / impedance.frequency.front();
            matrix[Index(2 * i, 0)] = 1.0;
            matrix[Index(2 * i + 1, 1)] = relative;
            matrix[Index(2 * i + 1, 2)] = -1.0 / relative;
            rightHandSide[2 * i] = impedance.value[i].real();
            rightHandSide[2 * i + 1] = impedance.value[i].imag();
        }
    }

    SeriesModel model(double const* unknowns) const {
        return {unknowns[0], unknowns[1] / reference, 1.0 / (unknowns[2] * reference)};
    }

    double reference; ///< radians per second
    Matrix2 matrix;
    Vector2 rightHandSide;
};

CapacitorFit rate(SeriesModel const& model, Impedance const& impedance) {
    double squares = 0.0;
    for (std::size_t i = 0; i < impedance.frequency.size(); ++i) {
        squares += std::norm(impedance.value[i] - model.impedance(impedance.frequency[i]));
    }
    return {model, std::sqrt(squares / static_cast<double>(2 * impedance.frequency.size()))};
}

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

std::complex<double> SeriesModel::impedance(double frequency) const {
    double const angular = 2.0 * std::numbers::pi * frequency;
    return {resistance, angular * inductance - 1.0 / (angular * capacitance)};
}

Expected<Impedance, ErrorCode2> measureImpedance(Spectrum const& voltage, Spectrum const& current,
                                                 double switchingFrequency, std::size_t periods,
                                                 std::size_t harmonics, Place& place) {
    Impedance impedance;
    for (std::size_t order = 1; order <= harmonics; ++order) {
        std::size_t const bin = order * periods;
        if (bin >= current.amplitude.length() || current.amplitude[bin] == 0.0) {
            place.detail = fmt::format("harmonic {}", order);
            return Failure::NoCapacitorCurrent;
        }
        impedance.frequency.push_back(static_cast<double>(order) * switchingFrequency);
        impedance.value.push_back(voltage.bin(bin) / current.bin(bin));
    }
    return impedance;
}

Expected<CapacitorFit, ErrorCode2> fitFreely(Impedance const& impedance) {
    constexpr double leastSingularValue = 1e-12; // of the largest; what is below it counts as zero
    FitEquations equations(impedance);
    auto const solved =
        Tervane::Math::LAPACK::gelsd(equations.matrix, equations.rightHandSide, leastSingularValue);
    if (!solved) {
        return solved.error();
    }
    return rate(equations.model(equations.rightHandSide.data()), impedance);
}

Expected<CapacitorFit, ErrorCode2> fitWithCapacitance(Impedance const& impedance, double capacitance) {
    FitEquations equations(impedance);
    // One constraint, on the third unknown alone.
    Matrix2 constraint(1, 3, 0.0);
    constraint[Index(0, 2)] = 1.0;
    Vector2 value(1, 1.0 / (equations.reference * capacitance));
    auto const solution =
        Tervane::Math::LAPACK::gglse(equations.matrix, constraint, equations.rightHandSide, value);
    if (!solution) {
        return solution.error();
    }
    return rate(equations.model(solution->data()), impedance);
}

} // namespace ConverterEmi

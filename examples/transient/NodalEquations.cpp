#include "NodalEquations.h"

#include <Math/Index.h>

namespace Transient {

using Tervane::Math::Index;

void stamp(Matrix2& matrix, int row, int column, double value) {
    if (row != ground && column != ground) {
        matrix[Index(static_cast<std::size_t>(row), static_cast<std::size_t>(column))] += value;
    }
}

void stamp(Vector2& vector, int row, double value) {
    if (row != ground) {
        vector[static_cast<std::size_t>(row)] += value;
    }
}

void stampAdmittance(Matrix2& matrix, Branch const& branch, double value) {
    stamp(matrix, branch.from, branch.from, value);
    stamp(matrix, branch.to, branch.to, value);
    stamp(matrix, branch.from, branch.to, -value);
    stamp(matrix, branch.to, branch.from, -value);
}

void stampConductances(Matrix2& matrix, Nonlinear const& element, Linearised const& at) {
    stampAdmittance(matrix, element.branch, at.conductance);
    stamp(matrix, element.branch.from, element.gate, at.transconductance);
    stamp(matrix, element.branch.to, element.gate, -at.transconductance);
}

void stampCurrent(Vector2& vector, Branch const& branch, double value) {
    stamp(vector, branch.from, value);
    stamp(vector, branch.to, -value);
}

double voltageAcross(Branch const& branch, Vector2 const& x) {
    double const from = branch.from == ground ? 0.0 : x[static_cast<std::size_t>(branch.from)];
    double const to = branch.to == ground ? 0.0 : x[static_cast<std::size_t>(branch.to)];
    return from - to;
}

namespace {

std::size_t unknowns(Circuit const& circuit) {
    return circuit.nodes.size() + circuit.sources.size() + circuit.inductors.size();
}

/// The current of a source or an inductor is an unknown, @p current: it leaves one node and enters the other,
/// and the element's own equation starts with its voltage.
void stampBranchCurrent(Matrix2& matrix, Branch const& branch, int current) {
    stamp(matrix, branch.from, current, 1.0);
    stamp(matrix, branch.to, current, -1.0);
    stamp(matrix, current, branch.from, 1.0);
    stamp(matrix, current, branch.to, -1.0);
}

} // namespace

NodalEquations::NodalEquations(Circuit const& circuit)
    : _nodes(circuit.nodes.size()),
      _conductance(unknowns(circuit), unknowns(circuit), 0.0),
      _storage(unknowns(circuit), unknowns(circuit), 0.0),
      _initialCharge(unknowns(circuit)) {
    Vector2 const voltages(circuit.initialVoltages.data(), circuit.initialVoltages.size());
    for (std::string const& node : circuit.nodes) {
        _names.push_back("v(" + node + ")");
    }
    for (Resistor const& resistor : circuit.resistors) {
        stampAdmittance(_conductance, resistor.branch, 1.0 / resistor.resistance);
    }
    for (Capacitor const& capacitor : circuit.capacitors) {
        stampAdmittance(_storage, capacitor.branch, capacitor.capacitance);
        double const voltage = capacitor.initialVoltage.value_or(voltageAcross(capacitor.branch, voltages));
        stampCurrent(_initialCharge, capacitor.branch, capacitor.capacitance * voltage);
    }
    auto current = static_cast<int>(_nodes);
    for (VoltageSource const& source : circuit.sources) {
        stampBranchCurrent(_conductance, source.branch, current++);
        _waveforms.push_back(source.waveform);
        _names.push_back("i(" + source.name + ")");
    }
    for (Inductor const& inductor : circuit.inductors) {
        stampBranchCurrent(_conductance, inductor.branch, current);
        stamp(_storage, current, current, -inductor.inductance);
        stamp(_initialCharge, current++, -inductor.inductance * inductor.initialCurrent);
        _names.push_back("i(" + inductor.name + ")");
    }
}

void NodalEquations::sources(double time, Vector2& b) const {
    for (std::size_t i = 0; i < order(); ++i) {
        b[i] = 0.0;
    }
    for (std::size_t i = 0; i < _waveforms.size(); ++i) {
        b[sourceCurrent(i)] = _waveforms[i].at(time);
    }
}

} // namespace Transient

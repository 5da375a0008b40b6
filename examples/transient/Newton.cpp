#include "Newton.h"

#include <Math/BLAS.h>
#include <Math/Errors.h>
#include <Math/Index.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Transient {

using Tervane::Math::Index;
using Tervane::Math::NoTranspose;
namespace BLAS = Tervane::Math::BLAS;

namespace {

// More distinct step sizes than a switching circuit has; beyond it the oldest inverses are of no use any
// more.
constexpr std::size_t mostLinearParts = 512;

// What stays of each nonlinear branch in the linear rest. Any value gives the same solution; this one, in S,
// lies between the conductances of a switch that is off and one that is on.
constexpr double keptConductance = 1e-3;

void clear(Matrix2& matrix) {
    std::fill_n(matrix.data(), matrix.rows() * matrix.columns(), 0.0);
}

} // namespace

Newton::Newton(Circuit const& circuit, NodalEquations const& equations)
    : _circuit(circuit),
      _equations(equations),
      _voltages(circuit.nonlinear.size()),
      _columnScale(equations.order()) {}

void Newton::formLinearPart(double leading, Matrix2& matrix) {
    double const* const conductance = _equations.conductance().data();
    double const* const storage = _equations.storage().data();
    std::size_t const n = _equations.order();
    for (std::size_t i = 0; i < n * n; ++i) {
        matrix.data()[i] = conductance[i] + leading * storage[i];
    }
    for (std::size_t c = 0; c < n; ++c) {
        _columnScale[c] = 0.0;
        for (std::size_t r = 0; r < n; ++r) {
            _columnScale[c] = std::max(_columnScale[c], std::abs(matrix[Index(r, c)]));
        }
    }
}

void Newton::formRightHandSide(Step const& step, Vector2& rightHandSide) const {
    _equations.sources(step.time, rightHandSide);
    rightHandSide -= step.history; // which is longer, and read in part
}

Linearised Newton::linearise(std::size_t k, Step const& step, double voltage, double gateVoltage) const {
    Linearised result = _circuit.nonlinear[k].at(voltage, gateVoltage);
    result.current += step.leading * result.charge + step.history[_equations.order() + k];
    result.conductance += step.leading * result.capacitance;
    return result;
}

double Newton::limited(std::size_t k, double proposed, double last) const {
    auto const* const diode = std::get_if<Diode>(&_circuit.nonlinear[k].device);
    return diode != nullptr ? diode->limited(proposed, last) : proposed;
}

bool Newton::isSettled(double before, double after, bool isVoltage) const {
    TransientAnalysis const& analysis = _circuit.analysis;
    double const size = std::max(std::abs(before), std::abs(after));
    return std::abs(after - before)
           <= analysis.reltol * size + (isVoltage ? analysis.vntol : analysis.abstol);
}

template<class RightHandSide>
Expected<void, ErrorCode2> Newton::solveLinear(Matrix2& matrix, RightHandSide& rightHandSide,
                                               Place& place) const {
    auto const solved = BLAS::gesv(matrix, rightHandSide);
    if (!solved && solved.error() != ErrorCode2(Tervane::Math::SolutionNotComputed)) {
        return solved.error();
    }
    // The matrix holds the factors now, also after a zero pivot. Pivoting exchanges rows only, so the place
    // of a pivot on the diagonal is the number of its unknown. A circuit part that floats may leave a pivot
    // of rounding errors, with which the solve succeeds.
    std::size_t const n = _equations.order();
    for (std::size_t i = 0; i < n; ++i) {
        double const least =
            static_cast<double>(n) * std::numeric_limits<double>::epsilon() * _columnScale[i];
        if (std::abs(matrix[Index(i, i)]) <= least) {
            place.detail = _equations.name(i) + " is not determined";
            return Failure::CircuitSingular;
        }
    }
    return {};
}

Expected<void, ErrorCode2> Newton::checkFinite(Vector2 const& x, Place& place) const {
    for (std::size_t i = 0; i < _equations.order(); ++i) {
        if (!std::isfinite(x[i])) {
            place.detail = _equations.name(i);
            return Failure::ResultNotFinite;
        }
    }
    return {};
}

WholeNewton::WholeNewton(Circuit const& circuit, NodalEquations const& equations)
    : Newton(circuit, equations),
      _linear(equations.order(), equations.order(), 0.0),
      _matrix(_linear),
      _sources(equations.order()),
      _next(equations.order()) {}

Expected<std::size_t, ErrorCode2> WholeNewton::solve(Step const& step, Vector2& x, Place& place) {
    if (step.leading != _leading) {
        formLinearPart(step.leading, _linear);
        _leading = step.leading;
    }
    formRightHandSide(step, _sources);
    auto const& elements = _circuit.nonlinear;
    for (std::size_t k = 0; k < elements.size(); ++k) {
        _voltages[k] = voltageAcross(elements[k].branch, x);
    }

    for (std::size_t iteration = 1; iteration <= mostIterations; ++iteration) {
        _matrix = _linear; // into storage that is there
        _next = _sources;
        for (std::size_t k = 0; k < elements.size(); ++k) {
            auto const& [branch, gate, device] = elements[k];
            double const gateVoltage = voltageAcross({gate, ground}, x);
            Linearised const at = linearise(k, step, _voltages[k], gateVoltage);
            stampConductances(_matrix, elements[k], at);
            stampCurrent(_next, branch,
                         at.conductance * _voltages[k] + at.transconductance * gateVoltage - at.current);
        }
        if (auto const solved = solveLinear(_matrix, _next, place); !solved) {
            return solved.error();
        }
        if (auto const finite = checkFinite(_next, place); !finite) {
            return finite.error();
        }

        bool settled = true;
        for (std::size_t i = 0; i < x.length(); ++i) {
            settled = settled && isSettled(x[i], _next[i], _equations.isVoltage(i));
        }
        for (std::size_t k = 0; k < elements.size(); ++k) {
            double const proposed = voltageAcross(elements[k].branch, _next);
            _voltages[k] = limited(k, proposed, _voltages[k]);
            settled = settled && _voltages[k] == proposed;
        }
        x = _next;
        if (settled) {
            return iteration;
        }
    }
    return Failure::NotConverged;
}

PortNewton::PortNewton(Circuit const& circuit, NodalEquations const& equations)
    : Newton(circuit, equations),
      _matrix(equations.order(), equations.order(), 0.0),
      _rightHandSides(equations.order(), 1 + circuit.nonlinear.size(), 0.0),
      _sources(equations.order()),
      _unloaded(equations.order()),
      _currents(circuit.nonlinear.size()),
      _conductances(circuit.nonlinear.size()),
      _portMatrix(circuit.nonlinear.size(), circuit.nonlinear.size(), 0.0),
      _portVoltages(circuit.nonlinear.size()) {
    _linearParts.reserve(mostLinearParts);
}

void PortNewton::formMatrix(double leading) {
    formLinearPart(leading, _matrix);
    for (Nonlinear const& element : _circuit.nonlinear) {
        stampAdmittance(_matrix, element.branch, keptConductance);
    }
}

Expected<PortNewton::LinearPart*, ErrorCode2> PortNewton::findLinearPart(Step const& step, Place& place) {
    std::size_t const n = _equations.order();
    std::size_t const ports = _circuit.nonlinear.size();
    auto const known = _linearParts.find(step.leading);
    if (known != _linearParts.end()) {
        LinearPart& part = known->second;
        if (part.inverse.rows() == 0) {
            formMatrix(step.leading);
            part.inverse = Matrix2(n, n, 0.0);
            for (std::size_t i = 0; i < n; ++i) {
                part.inverse[Index(i, i)] = 1.0;
            }
            if (auto const solved = solveLinear(_matrix, part.inverse, place); !solved) {
                return solved.error();
            }
        }
        BLAS::gemv(NoTranspose, 1.0, part.inverse, _sources, 0.0, _unloaded).value();
        return &part;
    }

    formMatrix(step.leading);
    clear(_rightHandSides);
    std::copy_n(_sources.data(), n, _rightHandSides[0]);
    for (std::size_t k = 0; k < ports; ++k) {
        auto const& branch = _circuit.nonlinear[k].branch;
        stamp(_rightHandSides, branch.from, static_cast<int>(k) + 1, 1.0);
        stamp(_rightHandSides, branch.to, static_cast<int>(k) + 1, -1.0);
    }
    if (auto const solved = solveLinear(_matrix, _rightHandSides, place); !solved) {
        return solved.error();
    }
    std::copy_n(_rightHandSides[0], n, _unloaded.data());
    LinearPart part{{}, Matrix2(n, ports, 0.0), Matrix2(ports, ports, 0.0)};
    std::copy_n(_rightHandSides[0] + n, n * ports, part.transfer.data());
    for (std::size_t k = 0; k < ports; ++k) {
        Vector2 const response(part.transfer[k], n);
        for (std::size_t j = 0; j < ports; ++j) {
            part.resistance[Index(j, k)] = voltageAcross(_circuit.nonlinear[j].branch, response);
        }
    }
    if (_linearParts.size() == mostLinearParts) {
        _linearParts.clear();
    }
    return &(_linearParts[step.leading] = std::move(part));
}

Expected<std::size_t, ErrorCode2> PortNewton::solve(Step const& step, Vector2& x, Place& place) {
    formRightHandSide(step, _sources);
    auto const found = findLinearPart(step, place);
    if (!found) {
        return found.error();
    }
    LinearPart const& part = **found;
    auto const& elements = _circuit.nonlinear;
    std::size_t const ports = elements.size();
    for (std::size_t k = 0; k < ports; ++k) {
        _voltages[k] = voltageAcross(elements[k].branch, x);
    }
    x = _unloaded;
    if (ports == 0) {
        return std::size_t(1);
    }

    for (std::size_t iteration = 1; iteration <= mostIterations; ++iteration) {
        // v + R (i0 + g v) = v0, with i0 the currents that the tangents have at no voltage.
        for (std::size_t k = 0; k < ports; ++k) {
            auto const& [branch, gate, device] = elements[k];
            // A grounded source drives the gate, so the gate's voltage does not depend on the ports.
            Linearised const at = linearise(k, step, _voltages[k], voltageAcross({gate, ground}, _unloaded));
            _conductances[k] = at.conductance - keptConductance;
            _currents[k] = at.current - at.conductance * _voltages[k];
            for (std::size_t j = 0; j < ports; ++j) {
                _portMatrix[Index(j, k)] = part.resistance[Index(j, k)] * _conductances[k];
            }
            _portMatrix[Index(k, k)] += 1.0;
            _portVoltages[k] = voltageAcross(branch, _unloaded);
        }
        BLAS::gemv(NoTranspose, -1.0, part.resistance, _currents, 1.0, _portVoltages).value();
        if (auto const solved = BLAS::gesv(_portMatrix, _portVoltages); !solved) {
            return solved.error();
        }

        bool settled = true;
        for (std::size_t k = 0; k < ports; ++k) {
            double const proposed = _portVoltages[k];
            double const next = limited(k, proposed, _voltages[k]);
            settled = settled && next == proposed && isSettled(_voltages[k], next, true);
            _currents[k] += _conductances[k] * proposed;
            _voltages[k] = next;
        }
        if (settled) {
            BLAS::gemv(NoTranspose, -1.0, part.transfer, _currents, 1.0, x).value();
            if (auto const finite = checkFinite(x, place); !finite) {
                return finite.error();
            }
            return iteration;
        }
    }
    return Failure::NotConverged;
}

} // namespace Transient

#include "SmallSignal.h"

#include "Newton.h"

#include <Math/Index.h>
#include <Math/LAPACK.h>

#include <numbers>

namespace Transient {

using Tervane::Math::Index;

Expected<SmallSignal, ErrorCode2> SmallSignal::about(Circuit const& circuit, Place& place) {
    NodalEquations const equations(circuit);
    Vector2 x(equations.order());
    Vector2 const noHistory(equations.order() + circuit.nonlinear.size());
    Step const rest{.time = 0.0, .leading = 0.0, .history = noHistory};
    if (auto const solved = WholeNewton(circuit, equations).solve(rest, x, place); !solved) {
        return solved.error();
    }
    SmallSignal result;
    result._conductance = equations.conductance();
    result._storage = equations.storage();
    for (Nonlinear const& element : circuit.nonlinear) {
        double const gate = voltageAcross({element.gate, ground}, x);
        Linearised const at = element.at(voltageAcross(element.branch, x), gate);
        stampConductances(result._conductance, element, at);
        stampAdmittance(result._storage, element.branch, at.capacitance);
    }
    return result;
}

Expected<std::complex<double>, ErrorCode2> SmallSignal::transferImpedance(std::size_t from, std::size_t to,
                                                                          double frequency) const {
    std::size_t const n = _conductance.rows();
    double const angular = 2.0 * std::numbers::pi * frequency;
    Matrix2 matrix(2 * n, 2 * n, 0.0);
    for (std::size_t c = 0; c < n; ++c) {
        for (std::size_t r = 0; r < n; ++r) {
            matrix[Index(r, c)] = matrix[Index(r + n, c + n)] = _conductance[Index(r, c)];
            matrix[Index(r + n, c)] = angular * _storage[Index(r, c)];
            matrix[Index(r, c + n)] = -matrix[Index(r + n, c)];
        }
    }
    Vector2 voltages(2 * n);
    voltages[from] = 1.0;
    if (auto const solved = Tervane::Math::LAPACK::gesv(matrix, voltages); !solved) {
        return solved.error();
    }
    return std::complex<double>(voltages[to], voltages[to + n]);
}

} // namespace Transient

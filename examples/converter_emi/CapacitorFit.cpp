#include "CapacitorFit.h"

#include <Math/LAPACK.h>
#include <Math/Matrix2.h>

#include <fmt/format.h>

#include <cmath>
#include <numbers>

namespace ConverterEmi {

namespace {

using Tervane::Math::Index;
using Tervane::Math::Matrix2;

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

#include "Gear.h"

#include <Math/BLAS.h>
#include <System/Guard.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>

namespace Transient {

using Tervane::Math::NoTranspose;
namespace BLAS = Tervane::Math::BLAS;

namespace {

// The smallest step is 2^-30 of the largest: 10 attoseconds of 15 nanoseconds, far below any circuit's need.
constexpr int levels = 30;
// Where the solution is not known yet, at the start, and where its derivatives have just jumped.
constexpr int startLevel = 12;
constexpr int cornerLevel = 6;

// The truncation error of an unknown is measured against its own size, and against this part of the largest
// voltage or current so far: a node that moves by millivolts among volts need not be followed to the
// microvolt.
constexpr double leastRelativeSize = 0.05;

/// The last few instants of a vector, the newest in the place of the oldest.
class History {
public:
    History(std::size_t rows, std::size_t instants) : _columns(rows, instants, 0.0), _weights(instants) {}

    void push(Vector2 const& column) {
        _newest = (_newest + 1) % _columns.columns();
        std::copy_n(column.data(), _columns.rows(), _columns[_newest]);
    }

    /// The vector as it was last.
    double const* newest() const { return _columns[_newest]; }

    /// The sum of the instants, each times its weight, the newest first, into @p sum.
    template<std::size_t instants>
    void combine(std::array<double, instants> const& weights, Vector2& sum) {
        for (std::size_t age = 0; age < instants; ++age) {
            _weights[(_newest + instants - age) % instants] = weights[age];
        }
        BLAS::gemv(NoTranspose, 1.0, _columns, _weights, 0.0, sum).value();
    }

private:
    Matrix2 _columns;
    Vector2 _weights;
    std::size_t _newest = 0;
};

/// The method's coefficients for a step after steps of other sizes.
struct Coefficients {
    double leading;                      ///< of the new charge in its derivative, 1/s
    std::array<double, 2> derivative;    ///< of the last charges in it, 1/s
    std::array<double, 3> extrapolation; ///< of the last solutions in the prediction
    double errorShare; ///< of the truncation error in the difference between solution and prediction
};

/// Order 1: the backward Euler method. The prediction is a straight line, or, where there is one instant
/// only, a constant that says nothing about the error.
Coefficients firstOrder(double h, double last, bool hasLine) {
    double const slope = hasLine ? h / last : 0.0;
    return {.leading = 1.0 / h,
            .derivative = {-1.0 / h, 0.0},
            .extrapolation = {1.0 + slope, -slope, 0.0},
            .errorShare = hasLine ? h / (2.0 * h + last) : 0.0};
}

/// Order 2: the derivative of the parabola through the new and the last two instants. The prediction is the
/// parabola through the last three.
Coefficients secondOrder(double h, double last, double secondLast) {
    double const two = h + last; // the time that two and three steps take
    double const three = two + secondLast;
    // Both errors as multiples of the third derivative over 6.
    double const truncation = h * h * two * two / (h + two);
    double const prediction = h * two * three;
    return {.leading = (h + two) / (h * two),
            .derivative = {-two / (h * last), h / (last * two)},
            .extrapolation = {two * three / (last * (last + secondLast)), -h * three / (last * secondLast),
                              h * two / ((last + secondLast) * secondLast)},
            .errorShare = truncation / (truncation + prediction)};
}

class Integration {
public:
    Integration(Circuit const& circuit, NewtonForm form)
        : _circuit(circuit),
          _equations(circuit),
          _newton(makeNewton(circuit, _equations, form)),
          _solutions(_equations.order(), 3),
          _charges(_equations.order() + circuit.nonlinear.size(), 2),
          _x(_equations.order()),
          _charge(_equations.order() + circuit.nonlinear.size()),
          _history(_charge) {
        std::size_t const n = _equations.order();
        for (std::size_t i = 0; i < n; ++i) {
            double const* const column = _equations.storage()[i];
            if (std::any_of(column, column + n, [](double stored) { return stored != 0.0; })) {
                _dynamic.push_back(i);
            }
        }
        _simulation.waveforms.values.resize(circuit.probes.size());
        start();
    }

    Expected<Simulation, ErrorCode2> run(std::function<void(double)> const& progress, Place& place) {
        std::vector<double> const corners = findCorners();
        for (std::size_t i = 0; i + 1 < corners.size(); ++i) {
            if (auto const done = runBetween(corners[i], corners[i + 1], place); !done) {
                return done.error();
            }
            progress(corners[i + 1]);
        }
        return std::move(_simulation);
    }

private:
    static std::unique_ptr<Newton> makeNewton(Circuit const& circuit, NodalEquations const& equations,
                                              NewtonForm form) {
        if (form == NewtonForm::Whole) {
            return std::make_unique<WholeNewton>(circuit, equations);
        }
        return std::make_unique<PortNewton>(circuit, equations);
    }

    void start() {
        std::ranges::copy(_circuit.initialVoltages, _x.data());
        std::copy_n(_equations.initialCharge().data(), _equations.order(), _charge.data());
        storeNonlinearCharges();
        _solutions.push(_x);
        _charges.push(_charge);
    }

    /// The start, the corners of all sources, and the end.
    std::vector<double> findCorners() const {
        double const stop = _circuit.analysis.stop;
        double const rounding = 1e-12 * stop; // corners that are no further apart are one
        std::vector<double> all;
        for (VoltageSource const& source : _circuit.sources) {
            source.waveform.appendCorners(stop, all);
        }
        std::ranges::sort(all);
        std::vector<double> corners{0.0};
        for (double const corner : all) {
            if (corner - corners.back() > rounding && stop - corner > rounding) {
                corners.push_back(corner);
            }
        }
        corners.push_back(stop);
        return corners;
    }

    Expected<void, ErrorCode2> runBetween(double begin, double end, Place& place) {
        // The same distance must give the same steps in every period, whatever the times' rounding: else no
        // step size would ever come again.
        double const resolution = 1e-14 * _circuit.analysis.stop;
        double const distance = std::round((end - begin) / resolution) * resolution;
        double const largest = _circuit.analysis.maxStep * (1.0 + 1e-9);
        auto const count = static_cast<std::uint64_t>(std::ceil(distance / largest));

        // Positions count the smallest steps.
        std::uint64_t const last = count << levels;
        std::uint64_t position = 0;
        int level = _known == 0 ? startLevel : cornerLevel;
        _known = std::min(_known, 2);
        while (position < last) {
            std::uint64_t const next = position + (std::uint64_t(1) << (levels - level));
            double const step = std::ldexp(distance / static_cast<double>(count), -level);
            double const time =
                next == last ? end
                             : begin + distance * (static_cast<double>(next) / static_cast<double>(last));
            auto const error = attempt(time, step, place);
            if (!error && !mayShorterStepHelp(error.error())) {
                return error.error();
            }
            double const growth = std::ldexp(1.0, _known > 2 ? 3 : 2); // of the error where the step doubles
            if (!error || *error > 1.0) {
                ++_simulation.effort.rejected;
                double const excess = error ? std::log2(*error * safety) / std::log2(growth) : 2.0;
                level += std::clamp(static_cast<int>(std::ceil(excess)), 1, 4);
                if (level > levels) {
                    place.detail = fmt::format("at {:.6g} s", time);
                    return error ? Failure::StepTooSmall : error.error();
                }
                continue;
            }
            accept(time, step);
            position = next;
            bool const isOnCoarserGrid = level > 0 && position % (std::uint64_t(2) << (levels - level)) == 0;
            if (isOnCoarserGrid && *error * growth * safety < 1.0) {
                --level;
            }
        }
        return {};
    }

    static constexpr double safety = 1.3;

    static bool mayShorterStepHelp(ErrorCode2 const& error) {
        return error == ErrorCode2(Failure::NotConverged) || error == ErrorCode2(Failure::ResultNotFinite);
    }

    /// Solves a step; how its truncation error stands to what is allowed.
    Expected<double, ErrorCode2> attempt(double time, double step, Place& place) {
        Coefficients const coefficients =
            _known > 2 ? secondOrder(step, _steps[0], _steps[1]) : firstOrder(step, _steps[0], _known == 2);
        _solutions.combine(coefficients.extrapolation, _prediction);
        _charges.combine(coefficients.derivative, _history);
        _x = _prediction;
        auto const iterations = _newton->solve({time, coefficients.leading, _history}, _x, place);
        if (!iterations) {
            return iterations.error();
        }
        _simulation.effort.iterations += *iterations;

        TransientAnalysis const& analysis = _circuit.analysis;
        double worst = 0.0;
        for (std::size_t const i : _dynamic) {
            bool const isVoltage = _equations.isVoltage(i);
            double const size = std::max(std::abs(_x[i]), std::abs(_solutions.newest()[i]))
                                + leastRelativeSize * (isVoltage ? _largestVoltage : _largestCurrent);
            double const tolerance = analysis.reltol * size + (isVoltage ? analysis.vntol : analysis.abstol);
            worst = std::max(worst, std::abs(_x[i] - _prediction[i]) / tolerance);
        }
        return coefficients.errorShare * worst;
    }

    void accept(double time, double step) {
        ++_simulation.effort.steps;
        _known = std::min(_known + 1, 3);
        _steps = {step, _steps[0]};
        _solutions.push(_x);
        BLAS::gemv(NoTranspose, 1.0, _equations.storage(), _x, 0.0, _charge).value();
        storeNonlinearCharges();
        _charges.push(_charge);
        for (std::size_t i = 0; i < _x.length(); ++i) {
            double& largest = _equations.isVoltage(i) ? _largestVoltage : _largestCurrent;
            largest = std::max(largest, std::abs(_x[i]));
        }
        if (time >= _circuit.analysis.start) {
            record(time);
        }
    }

    void storeNonlinearCharges() {
        for (std::size_t k = 0; k < _circuit.nonlinear.size(); ++k) {
            Nonlinear const& element = _circuit.nonlinear[k];
            _charge[_equations.order() + k] = element.at(voltageAcross(element.branch, _x), 0.0).charge;
        }
    }

    void record(double time) {
        auto const append = [](Vector2& values, double value) {
            values.resize(values.length() + 1, value).value();
        };
        append(_simulation.waveforms.time, time);
        for (std::size_t i = 0; i < _circuit.probes.size(); ++i) {
            auto const& [name, isCurrent, index] = _circuit.probes[i];
            append(_simulation.waveforms.values[i], _x[isCurrent ? _equations.sourceCurrent(index) : index]);
        }
    }

    Circuit const& _circuit;
    NodalEquations _equations;
    std::unique_ptr<Newton> _newton;
    std::vector<std::size_t> _dynamic; ///< the unknowns that capacitances and inductances act on
    History _solutions;
    History _charges; ///< C x, then the charges of the nonlinear elements
    Vector2 _x;
    Vector2 _prediction{_equations.order()};
    Vector2 _charge;
    Vector2 _history;
    int _known = 0; ///< how many of the last solutions lie on the curve that the next one continues
    std::array<double, 2> _steps{1.0, 1.0}; ///< s, the last ones
    double _largestVoltage = 0.0;
    double _largestCurrent = 0.0;
    Simulation _simulation;
};

} // namespace

Expected<Simulation, ErrorCode2> simulate(Circuit const& circuit, NewtonForm form,
                                          std::function<void(double)> const& progress, Place& place) {
    return Tervane::System::guard<Simulation>(
        [&] { return Integration(circuit, form).run(progress, place); });
}

} // namespace Transient

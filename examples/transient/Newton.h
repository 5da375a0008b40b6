#pragma once

/// @file
/// Newton's method for one implicit step of the circuit, in two forms that differ in cost.

#include "NodalEquations.h"

#include <unordered_map>
#include <vector>

namespace Transient {

/// One step of a method that replaces dq/dt by `leading` q + `history`:
///
///     G x + leading C x + history + (currents of the nonlinear elements) = b(time)
struct Step {
    double time;            ///< s, at the step's end
    double leading;         ///< 1/s; 0 for an operating point
    Vector2 const& history; ///< A and V: one for each equation, then one for each nonlinear element's charge
};

/// Newton's method for one step after another: what both forms share.
class Newton {
public:
    /// @param circuit and @p equations must outlive this object
    Newton(Circuit const& circuit, NodalEquations const& equations);
    virtual ~Newton() = default;

    /// Solves a step.
    ///
    /// @param x a prediction, which becomes the solution
    /// @return the number of iterations; `Failure::NotConverged` when a smaller step may help
    virtual Expected<std::size_t, ErrorCode2> solve(Step const& step, Vector2& x, Place& place) = 0;

protected:
    /// G + leading C.
    void formLinearPart(double leading, Matrix2& matrix);
    /// b(time) - history.
    void formRightHandSide(Step const& step, Vector2& rightHandSide) const;
    /// Nonlinear element @p k at its branch's voltage: the current of the step, that into its charge
    /// included, and its derivatives.
    Linearised linearise(std::size_t k, Step const& step, double voltage, double gateVoltage) const;
    /// The next voltage for nonlinear element @p k.
    double limited(std::size_t k, double proposed, double last) const;
    /// Whether a change to @p after lies within the tolerance of its kind.
    bool isSettled(double before, double after, bool isVoltage) const;
    /// Solves in place for one or several right-hand sides. Where the equations are singular, or are so up to
    /// rounding, @p place names the unknown that they do not fix.
    template<class RightHandSide>
    Expected<void, ErrorCode2> solveLinear(Matrix2& matrix, RightHandSide& rightHandSide, Place& place) const;
    /// LAPACK lets a NaN through, and what grows beyond all bounds.
    Expected<void, ErrorCode2> checkFinite(Vector2 const& x, Place& place) const;

    Circuit const& _circuit;
    NodalEquations const& _equations;
    std::vector<double> _voltages;    ///< V, across the nonlinear elements: where they are linearised
    std::vector<double> _columnScale; ///< the largest element of each column of the linear part

    static constexpr std::size_t mostIterations = 60;
};

/// Every unknown in every iteration: one dense solve of the whole system each.
class WholeNewton final : public Newton {
public:
    WholeNewton(Circuit const& circuit, NodalEquations const& equations);
    Expected<std::size_t, ErrorCode2> solve(Step const& step, Vector2& x, Place& place) override;

private:
    double _leading = -1.0;
    Matrix2 _linear; ///< G + leading C
    Matrix2 _matrix;
    Vector2 _sources;
    Vector2 _next;
};

/// The iteration on the nonlinear elements' branches alone.
///
/// With the nonlinear currents i pulled out of their branches, the linear rest gives x = x0 - Z i, with x0
/// from the sources and Z from a unit current in each branch. Across the branches that leaves
/// v + R i(v) = v0, a system as small as there are nonlinear elements. A conductance of each branch stays in
/// the linear rest and is taken off i, since a node between two diodes would have nothing else to hold it.
///
/// For a new step size the linear part is
/// solved once, with x0 and Z as right-hand sides. When a step size comes again, the inverse is formed and
/// kept, and x0 is a product from then on.
class PortNewton final : public Newton {
public:
    PortNewton(Circuit const& circuit, NodalEquations const& equations);
    Expected<std::size_t, ErrorCode2> solve(Step const& step, Vector2& x, Place& place) override;

private:
    /// What belongs to one leading coefficient.
    struct LinearPart {
        Matrix2 inverse;    ///< empty until the coefficient comes again
        Matrix2 transfer;   ///< Z
        Matrix2 resistance; ///< R
    };
    /// The part for the step's coefficient; x0 is solved for on the way.
    Expected<LinearPart*, ErrorCode2> findLinearPart(Step const& step, Place& place);
    /// Makes the matrix of the linear rest.
    void formMatrix(double leading);

    std::unordered_map<double, LinearPart> _linearParts;
    Matrix2 _matrix;
    Matrix2 _rightHandSides;
    Vector2 _sources;
    Vector2 _unloaded; ///< x0
    Vector2 _currents; ///< i
    Vector2 _conductances;
    Matrix2 _portMatrix;
    Vector2 _portVoltages;
};

} // namespace Transient

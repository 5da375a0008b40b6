#include "linalg/LinearSolve.h"

#include "linalg/OneMKL.h"

#include <vector>

namespace Tervane::Math::Detail {

Failure solve(std::size_t n, std::size_t rightHandSides, double* a, double* b) {
    std::vector<OneMKL::Integer> pivots(n);
    OneMKL::Outcome const outcome = OneMKL::gesv(n, rightHandSides, a, n, pivots.data(), b, n);
    if (outcome.isSuccess())
        return {};
    return outcome.isRefusal() ? InvalidParameter : SolutionNotComputed;
}

} // namespace Tervane::Math::Detail

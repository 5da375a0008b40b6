#pragma once

#include "linalg/Failure.h"

#include <cstddef>

namespace Tervane::Math::Detail {

/// Solves A X = B in place for the n x n array at `a` and the n x rightHandSides array at `b`, which the
/// caller has checked or trusts. The one solve behind BLAS::gesv and LAPACK::gesv of both generations.
Failure solve(std::size_t n, std::size_t rightHandSides, double* a, double* b);

} // namespace Tervane::Math::Detail

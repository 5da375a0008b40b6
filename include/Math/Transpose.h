#pragma once

/// @file
/// The operation that a product or a solve applies to a matrix argument first.

#include <cstdint>

namespace Tervane::Math {

/// op(A) of the BLAS and LAPACK wrappers. A value that is not listed is passed on as no transposition.
enum Transpose : std::int32_t {
    NoTranspose = 0,         ///< A itself
    Transposed = 1,          ///< the transpose of A
    ConjugateTransposed = 2, ///< the conjugate transpose; of a real matrix the same as Transposed
};

} // namespace Tervane::Math

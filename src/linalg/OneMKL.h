#pragma once

#include "foundation/Failure.h"

#include <Math/Errors.h>
#include <Math/Transpose.h>

#include <cstddef>

/// The routines of oneMKL that this library uses, in its own types. oneMKL's headers stay behind this one.
///
/// Every matrix is column-major. Nothing is checked here and nothing is printed: a routine that refuses an
/// argument does nothing and, if it is a driver, says so in its outcome.
namespace Tervane::Math::Detail::OneMKL {

/// An integer as the 64-bit interface takes it: a dimension, a pivot, the size of a workspace.
using Integer = long long;

/// The workspace size with which a driver is asked how much workspace it wants.
inline constexpr Integer workspaceQuery = -1;

/// Whether a value is no enumerator. The routines are told no transposition then (compatibility C44).
inline bool isUnlisted(Transpose trans) {
    return trans != NoTranspose && trans != Transposed && trans != ConjugateTransposed;
}

/// What a LAPACK driver reports as `info`. The two kinds of failure stay apart: an argument that it refused,
/// a mistake of its caller's, and an outcome of the numbers.
struct Outcome {
    Integer info;

    bool isSuccess() const noexcept { return info == 0; }
    bool isRefusal() const noexcept { return info < 0; }

    /// @param numerical what an outcome of the numbers is
    Failure failure(LinearAlgebraErrc numerical) const {
        return isSuccess() ? Failure() : isRefusal() ? InvalidParameter : numerical;
    }
};

/// C := alpha op(A) op(B) + beta C
void gemm(Transpose transA, Transpose transB, std::size_t m, std::size_t n, std::size_t k, double alpha,
          double const* a, std::size_t lda, double const* b, std::size_t ldb, double beta, double* c,
          std::size_t ldc);

/// y := alpha op(A) x + beta y
void gemv(Transpose trans, std::size_t m, std::size_t n, double alpha, double const* a, std::size_t lda,
          double const* x, double beta, double* y);

/// A X = B by LU factorisation, for an n x n matrix A and n rows of B. The pivots are forgotten.
Outcome gesv(std::size_t n, std::size_t nrhs, double* a, double* b);

/// min ||b - op(A) x|| by QR or LQ factorisation, for one right-hand side
Outcome gels(Transpose trans, std::size_t m, std::size_t n, double* a, std::size_t lda, double* b,
             std::size_t ldb, double* work, Integer lwork);

/// min ||b - A x|| by singular value decomposition, for one right-hand side
Outcome gelsd(std::size_t m, std::size_t n, double* a, std::size_t lda, double* b, std::size_t ldb, double* s,
              double rcond, double* work, Integer lwork, Integer* iwork);

/// min ||c - A x|| subject to B x = d
Outcome gglse(std::size_t m, std::size_t n, std::size_t p, double* a, std::size_t lda, double* b,
              std::size_t ldb, double* c, double* d, double* x, double* work, Integer lwork);

} // namespace Tervane::Math::Detail::OneMKL

#include "linalg/OneMKL.h"

#include <mkl_blas.h>
#include <mkl_lapack.h>

#include <type_traits>

namespace Tervane::Math::Detail::OneMKL {

static_assert(std::is_same_v<MKL_INT, Integer>, "the 64-bit-integer interface is compiled against");

namespace {

MKL_INT const one = 1;

MKL_INT toInteger(std::size_t n) {
    return static_cast<MKL_INT>(n);
}

// A value that is no enumerator means no transposition; callers rely on it.
char const* flagOf(Transpose trans) {
    switch (trans) {
    case Transposed:
        return "T";
    case ConjugateTransposed:
        return "C";
    case NoTranspose:
    default:
        return "N";
    }
}

} // namespace

void gemm(Transpose transA, Transpose transB, std::size_t m, std::size_t n, std::size_t k, double alpha,
          double const* a, std::size_t lda, double const* b, std::size_t ldb, double beta, double* c,
          std::size_t ldc) {
    MKL_INT const rows = toInteger(m), columns = toInteger(n), inner = toInteger(k);
    MKL_INT const strideA = toInteger(lda), strideB = toInteger(ldb), strideC = toInteger(ldc);
    dgemm(flagOf(transA), flagOf(transB), &rows, &columns, &inner, &alpha, a, &strideA, b, &strideB, &beta, c,
          &strideC);
}

void gemv(Transpose trans, std::size_t m, std::size_t n, double alpha, double const* a, std::size_t lda,
          double const* x, double beta, double* y) {
    MKL_INT const rows = toInteger(m), columns = toInteger(n), strideA = toInteger(lda);
    dgemv(flagOf(trans), &rows, &columns, &alpha, a, &strideA, x, &one, &beta, y, &one);
}

Outcome gesv(std::size_t n, std::size_t rightHandSides, double* a, std::size_t lda, Integer* pivots,
             double* b, std::size_t ldb) {
    MKL_INT const order = toInteger(n), count = toInteger(rightHandSides), strideA = toInteger(lda),
                  strideB = toInteger(ldb);
    MKL_INT info = 0;
    dgesv(&order, &count, a, &strideA, pivots, b, &strideB, &info);
    return {info};
}

Outcome gels(Transpose trans, std::size_t m, std::size_t n, double* a, std::size_t lda, double* b,
             std::size_t ldb, double* work, Integer workLength) {
    MKL_INT const rows = toInteger(m), columns = toInteger(n), strideA = toInteger(lda),
                  strideB = toInteger(ldb), length = workLength;
    MKL_INT info = 0;
    dgels(flagOf(trans), &rows, &columns, &one, a, &strideA, b, &strideB, work, &length, &info);
    return {info};
}

Outcome gelsd(std::size_t m, std::size_t n, double* a, std::size_t lda, double* b, std::size_t ldb,
              double* singularValues, double rcond, double* work, Integer workLength, Integer* integerWork) {
    MKL_INT const rows = toInteger(m), columns = toInteger(n), strideA = toInteger(lda),
                  strideB = toInteger(ldb), length = workLength;
    MKL_INT rank = 0, info = 0;
    dgelsd(&rows, &columns, &one, a, &strideA, b, &strideB, singularValues, &rcond, &rank, work, &length,
           integerWork, &info);
    return {info};
}

Outcome gglse(std::size_t m, std::size_t n, std::size_t p, double* a, std::size_t lda, double* b,
              std::size_t ldb, double* c, double* d, double* x, double* work, Integer workLength) {
    MKL_INT const rows = toInteger(m), columns = toInteger(n), constraints = toInteger(p),
                  strideA = toInteger(lda), strideB = toInteger(ldb), length = workLength;
    MKL_INT info = 0;
    dgglse(&rows, &columns, &constraints, a, &strideA, b, &strideB, c, d, x, work, &length, &info);
    return {info};
}

} // namespace Tervane::Math::Detail::OneMKL

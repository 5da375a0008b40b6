#include "linalg/Failure.h"
#include "linalg/LinearSolve.h"
#include "linalg/OneMKL.h"
#include "linalg/Tables.h"

#include <Math/AbstractMatrix.h>
#include <Math/AbstractVector.h>
#include <Math/BLAS.h>
#include <Math/Matrix.h>
#include <Math/Vector.h>
#include <System/Guard.h>

#include <cstddef>
#include <utility>

namespace Tervane::Math {

// The routines on plain memory, written once. Below them the two generations, which differ in how they report
// and in what legacy gemm still does after a failed check.

namespace {

using Detail::ElementsIn;
using Detail::ElementsInOut;
using Detail::elementsOf;
using Detail::Failure;
using Detail::TableIn;
using Detail::TableInOut;
using Detail::tableOf;
namespace OneMKL = Detail::OneMKL;

std::size_t rowsOf(Transpose trans, TableIn const& a) {
    return trans == NoTranspose ? a.rows : a.columns;
}
std::size_t columnsOf(Transpose trans, TableIn const& a) {
    return trans == NoTranspose ? a.columns : a.rows;
}

/// The sizes of a product op(A) op(B): M x K times K x N.
struct ProductShape {
    ProductShape(Transpose transA, Transpose transB, TableIn const& a, TableIn const& b)
        : m(rowsOf(transA, a)),
          n(columnsOf(transB, b)),
          k(columnsOf(transA, a)),
          innerOfB(rowsOf(transB, b)) {}

    bool fits(Dimensions const& result) const { return result == Dimensions(m, n) && k == innerOfB; }

    std::size_t m;
    std::size_t n;
    std::size_t k;
    std::size_t innerOfB;
};

/// C := alpha op(A) op(B) + beta C, for shapes that fit.
void multiply(Transpose transA, Transpose transB, ProductShape const& shape, double alpha, TableIn const& a,
              TableIn const& b, double beta, TableInOut const& c) {
    OneMKL::gemm(transA, transB, shape.m, shape.n, shape.k, alpha, a.data, a.leadingDimension(), b.data,
                 b.leadingDimension(), beta, c.data, c.leadingDimension());
}

Failure failureUnless(bool condition, LinearAlgebraErrc failure) {
    return condition ? Failure() : Failure(failure);
}

/// y := alpha op(A) x + beta y, for vectors that are long enough.
Failure multiply(Transpose trans, double alpha, TableIn const& a, ElementsIn const& x, double beta,
                 ElementsInOut const& y) {
    if (x.length < columnsOf(trans, a) || y.length < rowsOf(trans, a))
        return DimensionsMismatch;
    OneMKL::gemv(trans, a.rows, a.columns, alpha, a.data, a.leadingDimension(), x.data, beta, y.data);
    return {};
}

/// The system's order comes from the right-hand side; A is trusted to match.
template<class RightHandSide>
Failure solve(TableInOut const& a, RightHandSide const& b) {
    return Detail::solve(b.rows, b.columns, a.data, b.data);
}

/// Runs the body of a legacy operation, out of which no exception comes: a failed allocation, or what an
/// accessor of the caller's own table throws, makes the error unknown.
template<class Body>
void reportingUnknown(System::ErrorCode& error, Body const& body) {
    try {
        body();
    } catch (...) {
        error.assignUnknown();
    }
}

} // namespace

namespace BLAS {

System::Expected<Matrix2*, System::ErrorCode2> gemm(Transpose transA, Transpose transB, double const& alpha,
                                                    Matrix2 const& A, Matrix2 const& B, double const& beta,
                                                    Matrix2& C) {
    return System::guard<Matrix2*>([&] {
        ProductShape const shape(transA, transB, tableOf(A), tableOf(B));
        Detail::raise(failureUnless(shape.fits(C.size()), DimensionsMismatch));
        multiply(transA, transB, shape, alpha, tableOf(A), tableOf(B), beta, tableOf(C));
        Detail::raise(
            failureUnless(shape.fits(C.size()), DimensionsMismatch)); // the operation's postcondition
        return &C;
    });
}

System::Expected<Matrix2, System::ErrorCode2> gemm(Transpose transA, Transpose transB, double const& alpha,
                                                   Matrix2 const& A, Matrix2 const& B) {
    return System::guard<Matrix2>([&] {
        ProductShape const shape(transA, transB, tableOf(A), tableOf(B));
        Matrix2 C(shape.m, shape.n, 0.0);
        gemm(transA, transB, alpha, A, B, 0.0, C).value();
        return C;
    });
}

System::Expected<Matrix2, System::ErrorCode2> gemm(Transpose transA, Transpose transB, Matrix2 const& A,
                                                   Matrix2 const& B) {
    return gemm(transA, transB, 1.0, A, B);
}

System::Expected<Vector2*, System::ErrorCode2> gemv(Transpose trans, double const& alpha, Matrix2 const& A,
                                                    Vector2 const& x, double const& beta, Vector2& y) {
    return System::guard<Vector2*>([&] {
        Detail::raise(multiply(trans, alpha, tableOf(A), elementsOf(x), beta, elementsOf(y)));
        return &y;
    });
}

System::Expected<Vector2, System::ErrorCode2> gemv(Transpose trans, double const& alpha, Matrix2 const& A,
                                                   Vector2 const& x) {
    return System::guard<Vector2>([&] {
        Vector2 y(rowsOf(trans, tableOf(A)));
        gemv(trans, alpha, A, x, 0.0, y).value();
        return y;
    });
}

System::Expected<Vector2, System::ErrorCode2> gemv(Transpose trans, Matrix2 const& A, Vector2 const& x) {
    return gemv(trans, 1.0, A, x);
}

System::Expected<Matrix2*, System::ErrorCode2> gesv(Matrix2& A, Matrix2& B) {
    return System::guard<Matrix2*>([&] {
        Detail::raise(solve(tableOf(A), tableOf(B)));
        return &B;
    });
}

System::Expected<Vector2*, System::ErrorCode2> gesv(Matrix2& A, Vector2& b) {
    return System::guard<Vector2*>([&] {
        Detail::raise(solve(tableOf(A), elementsOf(b)));
        return &b;
    });
}

Matrix& gemm(Transpose transA, Transpose transB, double const& alpha, AbstractMatrix const& A,
             AbstractMatrix const& B, double const& beta, Matrix& C, System::ErrorCode& error) {
    reportingUnknown(error, [&] {
        ProductShape const shape(transA, transB, tableOf(A), tableOf(B));
        Failure const mismatch = failureUnless(shape.fits(C.size()), DimensionsMismatch);
        if (!mismatch)
            multiply(transA, transB, shape, alpha, tableOf(A), tableOf(B), beta, tableOf(C));
        Detail::report(mismatch, error);
        // Callers rely on the postcondition being looked at after a failed check too: it reports the mismatch
        // again.
        Detail::report(failureUnless(shape.fits(C.size()), DimensionsMismatch), error);
    });
    return C;
}

Matrix gemm(Transpose transA, Transpose transB, double const& alpha, AbstractMatrix const& A,
            AbstractMatrix const& B, System::ErrorCode& error) {
    Matrix C;
    reportingUnknown(error, [&] {
        ProductShape const shape(transA, transB, tableOf(A), tableOf(B));
        C = Matrix(shape.m, shape.n, 0.0);
        gemm(transA, transB, alpha, A, B, 0.0, C, error);
    });
    return C;
}

Matrix gemm(Transpose transA, Transpose transB, AbstractMatrix const& A, AbstractMatrix const& B,
            System::ErrorCode& error) {
    return gemm(transA, transB, 1.0, A, B, error);
}

Vector& gemv(Transpose trans, double const& alpha, AbstractMatrix const& A, AbstractVector const& x,
             double const& beta, Vector& y, System::ErrorCode& error) {
    reportingUnknown(error, [&] {
        Detail::report(multiply(trans, alpha, tableOf(A), elementsOf(x), beta, elementsOf(y)), error);
    });
    return y;
}

Vector gemv(Transpose trans, double const& alpha, AbstractMatrix const& A, AbstractVector const& x,
            System::ErrorCode& error) {
    Vector y;
    reportingUnknown(error, [&] {
        y = Vector(rowsOf(trans, tableOf(A)));
        gemv(trans, alpha, A, x, 0.0, y, error);
    });
    return y;
}

Vector gemv(Transpose trans, AbstractMatrix const& A, AbstractVector const& x, System::ErrorCode& error) {
    return gemv(trans, 1.0, A, x, error);
}

Matrix& gesv(Matrix& A, Matrix& B, System::ErrorCode& error) {
    reportingUnknown(error, [&] { Detail::report(solve(tableOf(A), tableOf(B)), error); });
    return B;
}

Vector& gesv(Matrix& A, Vector& b, System::ErrorCode& error) {
    reportingUnknown(error, [&] { Detail::report(solve(tableOf(A), elementsOf(b)), error); });
    return b;
}

} // namespace BLAS

Matrix AbstractMatrix::multiply(AbstractMatrix const& b, System::ErrorCode& error) const {
    return BLAS::gemm(NoTranspose, NoTranspose, *this, b, error);
}

Vector AbstractMatrix::multiply(AbstractVector const& x, System::ErrorCode& error) const {
    return BLAS::gemv(NoTranspose, *this, x, error);
}

} // namespace Tervane::Math

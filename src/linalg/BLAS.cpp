#include "containers/Access.h"
#include "foundation/Failure.h"
#include "legacy/Boundary.h"
#include "linalg/MatrixRef.h"
#include "linalg/OneMKL.h"
#include "linalg/Products.h"

#include <Math/BLAS.h>
#include <System/Guard.h>

#include <cstddef>
#include <optional>

namespace Tervane::Math {

// The routines, written once for both generations. Below them the generations, which differ in how they
// report.

namespace {

using Detail::Failure;
using Detail::failureUnless;
using Detail::MatrixRef;
using Detail::refOf;
namespace OneMKL = Detail::OneMKL;

template<class AnyMatrix>
Dimensions sizeOf(AnyMatrix const& M) {
    return Dimensions(M.rows(), M.columns());
}

/// The shape of op(M), for a matrix M of the shape `m`.
Dimensions op(Transpose trans, Dimensions const& m) {
    return trans == NoTranspose ? m : Dimensions(m.columns(), m.rows());
}

/// A product op(A) op(B) by its shapes: M x K times K x N.
struct Product {
    Transpose transA;
    Transpose transB;
    Dimensions a;
    Dimensions b;

    std::size_t m() const { return op(transA, a).rows(); }
    std::size_t n() const { return op(transB, b).columns(); }
    std::size_t k() const { return op(transA, a).columns(); }

    /// Whatever alpha is: oneMKL reads the operands of small products with an alpha of 0, too.
    bool readsOperands() const { return m() != 0 && n() != 0 && k() != 0; }

    bool fits(Dimensions const& c) const { return c == Dimensions(m(), n()) && k() == op(transB, b).rows(); }
};

template<class AnyMatrix>
Product productOf(Transpose transA, Transpose transB, AnyMatrix const& A, AnyMatrix const& B) {
    return {transA, transB, sizeOf(A), sizeOf(B)};
}

/// Whether the routine would read past the end of an operand. The shapes take a Transpose that is not
/// listed for a transposition, the routine takes it for none: of an operand with more rows than columns it
/// then reads columns that are not there, and the product when an operand has fewer it refuses.
bool readsBeyond(Product const& product) {
    auto const hasMoreColumns = [](Transpose trans, Dimensions const& m) {
        return OneMKL::isUnlisted(trans) && m.rows() < m.columns();
    };
    auto const hasMoreRows = [](Transpose trans, Dimensions const& m) {
        return OneMKL::isUnlisted(trans) && m.rows() > m.columns();
    };
    bool const isRefused =
        hasMoreColumns(product.transA, product.a) || hasMoreColumns(product.transB, product.b);
    return product.readsOperands() && !isRefused
           && (hasMoreRows(product.transA, product.a) || hasMoreRows(product.transB, product.b));
}

/// @name Whether a matrix has every element that its shape says
/// A table of the legacy family is believed.
/// @{
bool isWhole(Matrix2 const& M) {
    return Detail::ContainerAccess::isWhole(M);
}
bool isWhole(AbstractMatrix const& /*believed*/) {
    return true;
}
/// @}

/// C := alpha op(A) op(B) + beta C. The operands are asked for their elements when the shapes fit, not
/// before: a caller's own table need not have any.
template<class Operand, class Result>
Failure gemmInto(Product const& product, double alpha, Operand const& A, Operand const& B, double beta,
                 Result& C) {
    Failure failure = failureUnless(product.fits(C.size()) && !readsBeyond(product) && isWhole(A)
                                        && isWhole(B) && isWhole(C),
                                    DimensionsMismatch);
    if (!failure)
        OneMKL::gemm(product.transA, product.transB, product.m(), product.n(), product.k(), alpha, A.data(),
                     product.a.rows(), B.data(), product.b.rows(), beta, C.data(), product.m());
    // The operation's postcondition (compatibility C45). It looks at the same numbers as the check before the
    // product, so it cannot fail where that one passed; where that one failed it reports the mismatch again.
    if (Failure const after = failureUnless(product.fits(C.size()), DimensionsMismatch))
        failure = after;
    return failure;
}

/// @name Whether a vector has no elements
/// An empty view has length 1.
/// @{
bool isEmpty(Vector2 const& v, double const* /*elements*/) {
    return v.length() == 0;
}
bool isEmpty(AbstractVector const& v, double const* elements) {
    return elements == nullptr || v.rows() == 0 || v.columns() == 0;
}
/// @}

/// y := alpha op(A) x + beta y, for vectors that are long enough. Asks for elements as the product above
/// does.
template<class MatrixOperand, class VectorOperand, class Result>
Failure gemvInto(Transpose trans, Dimensions const& a, double alpha, MatrixOperand const& A,
                 VectorOperand const& x, double beta, Result& y) {
    // A Transpose that is not listed asks for the lengths of a transposition, and to the routine is none.
    Dimensions const asked = op(trans, a);
    Dimensions const taken = OneMKL::isUnlisted(trans) ? a : asked;
    bool const hasElements = a.rows() != 0 && a.columns() != 0;
    bool const readsX = hasElements && alpha != 0.0;
    bool const writesY = hasElements && !(alpha == 0.0 && beta == 1.0);
    auto const isTooShort = [](std::size_t length, std::size_t least, bool isUsed, std::size_t used) {
        return length < least || (isUsed && length < used);
    };
    if (isTooShort(x.length(), asked.columns(), readsX, taken.columns())
        || isTooShort(y.length(), asked.rows(), writesY, taken.rows()))
        return DimensionsMismatch;
    double const* const elementsOfX = x.data();
    if (readsX && (isEmpty(x, elementsOfX) || !isWhole(A)))
        return DimensionsMismatch;
    OneMKL::gemv(trans, a.rows(), a.columns(), alpha, A.data(), a.rows(), elementsOfX, beta, y.data());
    return {};
}

/// The system's order comes from the right-hand side, a MatrixRef or a VectorRef; A is trusted to match.
template<class RightHandSide>
Failure gesvTrusting(MatrixRef const& a, RightHandSide const& b) {
    return OneMKL::gesv(b.rows, b.columns, a.data, b.data).failure(SolutionNotComputed);
}

} // namespace

namespace BLAS {

System::Expected<Matrix2*, System::ErrorCode2> gemm(Transpose transA, Transpose transB, double const& alpha,
                                                    Matrix2 const& A, Matrix2 const& B, double const& beta,
                                                    Matrix2& C) {
    return System::guard<Matrix2*>([&] {
        Detail::raise(gemmInto(productOf(transA, transB, A, B), alpha, A, B, beta, C));
        return &C;
    });
}

System::Expected<Matrix2, System::ErrorCode2> gemm(Transpose transA, Transpose transB, double const& alpha,
                                                   Matrix2 const& A, Matrix2 const& B) {
    return System::guard<Matrix2>([&] {
        Product const product = productOf(transA, transB, A, B);
        Matrix2 C(product.m(), product.n(), 0.0);
        Detail::raise(gemmInto(product, alpha, A, B, 0.0, C));
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
        Detail::raise(gemvInto(trans, sizeOf(A), alpha, A, x, beta, y));
        return &y;
    });
}

System::Expected<Vector2, System::ErrorCode2> gemv(Transpose trans, double const& alpha, Matrix2 const& A,
                                                   Vector2 const& x) {
    return System::guard<Vector2>([&] {
        Dimensions const a = sizeOf(A);
        Vector2 y(op(trans, a).rows());
        Detail::raise(gemvInto(trans, a, alpha, A, x, 0.0, y));
        return y;
    });
}

System::Expected<Vector2, System::ErrorCode2> gemv(Transpose trans, Matrix2 const& A, Vector2 const& x) {
    return gemv(trans, 1.0, A, x);
}

System::Expected<Matrix2*, System::ErrorCode2> gesv(Matrix2& A, Matrix2& B) {
    return System::guard<Matrix2*>([&] {
        Detail::raise(gesvTrusting(refOf(A), refOf(B)));
        return &B;
    });
}

System::Expected<Vector2*, System::ErrorCode2> gesv(Matrix2& A, Vector2& b) {
    return System::guard<Vector2*>([&] {
        Detail::raise(gesvTrusting(refOf(A), refOf(b)));
        return &b;
    });
}

Matrix& gemm(Transpose transA, Transpose transB, double const& alpha, AbstractMatrix const& A,
             AbstractMatrix const& B, double const& beta, Matrix& C, System::ErrorCode& error) {
    Detail::reportFailure(error,
                          [&] { return gemmInto(productOf(transA, transB, A, B), alpha, A, B, beta, C); });
    return C;
}

Matrix gemm(Transpose transA, Transpose transB, double const& alpha, AbstractMatrix const& A,
            AbstractMatrix const& B, System::ErrorCode& error) {
    return Detail::product(transA, transB, alpha, A, B, error);
}

Matrix gemm(Transpose transA, Transpose transB, AbstractMatrix const& A, AbstractMatrix const& B,
            System::ErrorCode& error) {
    return Detail::product(transA, transB, 1.0, A, B, error);
}

Vector& gemv(Transpose trans, double const& alpha, AbstractMatrix const& A, AbstractVector const& x,
             double const& beta, Vector& y, System::ErrorCode& error) {
    Detail::reportFailure(error, [&] { return gemvInto(trans, sizeOf(A), alpha, A, x, beta, y); });
    return y;
}

Vector gemv(Transpose trans, double const& alpha, AbstractMatrix const& A, AbstractVector const& x,
            System::ErrorCode& error) {
    return Detail::product(trans, alpha, A, x, error);
}

Vector gemv(Transpose trans, AbstractMatrix const& A, AbstractVector const& x, System::ErrorCode& error) {
    return Detail::product(trans, 1.0, A, x, error);
}

Matrix& gesv(Matrix& A, Matrix& B, System::ErrorCode& error) {
    Detail::reportFailure(error, [&] { return gesvTrusting(refOf(A), refOf(B)); });
    return B;
}

Vector& gesv(Matrix& A, Vector& b, System::ErrorCode& error) {
    Detail::reportFailure(error, [&] { return gesvTrusting(refOf(A), refOf(b)); });
    return b;
}

} // namespace BLAS

Matrix Detail::product(Transpose transA, Transpose transB, double alpha, AbstractMatrix const& A,
                       AbstractMatrix const& B, System::ErrorCode& error) {
    return reportedResult<Matrix>(error, [&](std::optional<Matrix>& C) {
        Product const product = productOf(transA, transB, A, B);
        C.emplace(product.m(), product.n(), 0.0);
        return gemmInto(product, alpha, A, B, 0.0, *C);
    });
}

Vector Detail::product(Transpose trans, double alpha, AbstractMatrix const& A, AbstractVector const& x,
                       System::ErrorCode& error) {
    return reportedResult<Vector>(error, [&](std::optional<Vector>& y) {
        Dimensions const a = sizeOf(A);
        y.emplace(op(trans, a).rows());
        return gemvInto(trans, a, alpha, A, x, 0.0, *y);
    });
}

} // namespace Tervane::Math

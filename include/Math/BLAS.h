#pragma once

/// @file
/// Matrix products and the dense linear solve, checked entries to oneMKL on the containers' own storage.
///
/// @code
/// using namespace Tervane::Math;
/// Matrix2 const a(2, 3, 1.0);
/// Matrix2 const b(4, 3, 2.0);
/// auto const product = BLAS::gemm(NoTranspose, Transposed, a, b);        // a times the transpose of b
/// if (!product)
///     return product.error();
/// double const corner = (*product)[Index(0, 0)];                         // 6
/// @endcode
///
/// Matrices are column-major, the leading dimension is the row count, nothing is copied or transposed in
/// memory and nothing but a missing result and the pivots of `gesv` is allocated. Calls on different
/// containers may run on any threads at once; oneMKL may use threads of its own inside a call.

#include <Math/Export.h>
#include <Math/Matrix2.h>
#include <Math/Transpose.h>
#include <Math/Vector2.h>
#include <System/ErrorCode.h>
#include <System/Expected.h>

namespace Tervane::Math {

class AbstractMatrix;
class AbstractVector;
class Matrix;
class Vector;

namespace BLAS {

/// @name Matrix product
/// @{

/// C := alpha op(A) op(B) + beta C, with op(A) M x K, op(B) K x N and C M x N. The first form works on the
/// caller's C and gives its address; the others make C, with beta = 0 and, where it is not given, alpha = 1.
/// With beta = 0 what C held does not matter, NaNs included. With alpha = 0 oneMKL may read the operands all
/// the same, where the product has two columns for example: a NaN in them may then come through.
///
/// A Transpose that is not listed counts as a transposition for the shapes, and as none for the routine
/// (compatibility C44).
///
/// @return the product; `LinearAlgebraErrc::DimensionsMismatch` when the shapes do not fit together, when C
///         is not M x N, and when the routine would read what is not there, with an unlisted Transpose or of
///         a moved-from matrix (compatibility C23): mend the shapes. C is then as it was.
///
/// Complexity: O(M N K).
TVNMATH_API System::Expected<Matrix2*, System::ErrorCode2> gemm(Transpose transA, Transpose transB,
                                                                double const& alpha, Matrix2 const& A,
                                                                Matrix2 const& B, double const& beta,
                                                                Matrix2& C);
TVNMATH_API System::Expected<Matrix2, System::ErrorCode2>
gemm(Transpose transA, Transpose transB, double const& alpha, Matrix2 const& A, Matrix2 const& B);
TVNMATH_API System::Expected<Matrix2, System::ErrorCode2> gemm(Transpose transA, Transpose transB,
                                                               Matrix2 const& A, Matrix2 const& B);
/// @}

/// @name Matrix times vector
/// @{

/// y := alpha op(A) x + beta y. The first form works on the caller's y and gives its address; the others make
/// y, a column, with beta = 0 and, where it is not given, alpha = 1.
///
/// A longer x is read in part and a longer y is written in part: the vectors must only not be too short
/// (compatibility C47).
///
/// @return the product; `LinearAlgebraErrc::DimensionsMismatch` when x or y is too short, by the shapes or
///         for what the routine does with an unlisted Transpose, and when A was moved from; y is then as it
///         was
///
/// Complexity: O(rows columns).
TVNMATH_API System::Expected<Vector2*, System::ErrorCode2> gemv(Transpose trans, double const& alpha,
                                                                Matrix2 const& A, Vector2 const& x,
                                                                double const& beta, Vector2& y);
TVNMATH_API System::Expected<Vector2, System::ErrorCode2> gemv(Transpose trans, double const& alpha,
                                                               Matrix2 const& A, Vector2 const& x);
TVNMATH_API System::Expected<Vector2, System::ErrorCode2> gemv(Transpose trans, Matrix2 const& A,
                                                               Vector2 const& x);
/// @}

/// @name Linear solve without checks
/// @{

/// Solves A X = B by LU factorisation with partial pivoting. X overwrites B, the factors overwrite A; the
/// value is the address of B. The order n of the system is the row count of B, and the number of right-hand
/// sides its column count. For a vector that is rows(): a row, whatever its length, is a system of order 1
/// (compatibility C48).
///
/// A zero pivot is known when all of A is factored: A then holds the factors, and a zero on its diagonal is
/// at the place of an unknown that the equations do not fix. A system that is singular up to rounding, and a
/// NaN in A or b, succeed: check the result.
///
/// @pre A is n x n. Nothing checks this; LAPACK::gesv does.
/// @return the address of B; `LinearAlgebraErrc::SolutionNotComputed` for a pivot that is exactly zero,
///         `InvalidParameter` when the driver refuses an argument, as it does for n = 0. A and B hold what
///         the driver left in them.
///
/// Complexity: O(n^3).
TVNMATH_API System::Expected<Matrix2*, System::ErrorCode2> gesv(Matrix2& A, Matrix2& B);
TVNMATH_API System::Expected<Vector2*, System::ErrorCode2> gesv(Matrix2& A, Vector2& b);
/// @}

/// @name Matrix product, legacy
/// @{

/// As the current forms, on any matrix of the legacy family. A failure is
/// `LinearAlgebraErrorCode::DimensionsMismatch` in `error`, which is left as it is on success; the result is
/// returned all the same, as it stood (compatibility C45, C46). A table's data() is asked for only when the
/// shapes fit.
///
/// In this and the other legacy forms a LinearAlgebraErrorCode that a caller's own table throws is reported
/// as itself, and any other exception, of a failed allocation for example, makes the error unknown; a result
/// that was to be made is then empty. When there is no memory for the empty one either, `std::bad_alloc`
/// leaves, and the error is set before.
TVNMATH_API Matrix& gemm(Transpose transA, Transpose transB, double const& alpha, AbstractMatrix const& A,
                         AbstractMatrix const& B, double const& beta, Matrix& C, System::ErrorCode& error);
TVNMATH_API Matrix gemm(Transpose transA, Transpose transB, double const& alpha, AbstractMatrix const& A,
                        AbstractMatrix const& B, System::ErrorCode& error);
TVNMATH_API Matrix gemm(Transpose transA, Transpose transB, AbstractMatrix const& A, AbstractMatrix const& B,
                        System::ErrorCode& error);
/// @}

/// @name Matrix times vector, legacy
/// @{

/// As the current forms, on any matrix and vector of the legacy family. A failure is
/// `LinearAlgebraErrorCode::DimensionsMismatch` in `error`, which is left as it is on success; y is returned
/// all the same, as it stood.
TVNMATH_API Vector& gemv(Transpose trans, double const& alpha, AbstractMatrix const& A,
                         AbstractVector const& x, double const& beta, Vector& y, System::ErrorCode& error);
TVNMATH_API Vector gemv(Transpose trans, double const& alpha, AbstractMatrix const& A,
                        AbstractVector const& x, System::ErrorCode& error);
TVNMATH_API Vector gemv(Transpose trans, AbstractMatrix const& A, AbstractVector const& x,
                        System::ErrorCode& error);
/// @}

/// @name Linear solve without checks, legacy
/// @{

/// As the current forms; the codes of LinearAlgebraErrorCode arrive in `error`, which is left as it is on
/// success.
TVNMATH_API Matrix& gesv(Matrix& A, Matrix& B, System::ErrorCode& error);
TVNMATH_API Vector& gesv(Matrix& A, Vector& b, System::ErrorCode& error);
/// @}

} // namespace BLAS

} // namespace Tervane::Math

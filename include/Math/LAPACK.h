#pragma once

/// @file
/// Dense linear systems and least-squares problems by LAPACK's drivers.
///
/// @code
/// using namespace Tervane::Math;
/// Matrix2 model(100, 2, 1.0);                         // a line: a column of ones, and one of the times
/// Vector2 const time = linspace(0.0, 1.0, 100);
/// std::copy_n(time.data(), 100, model[1]);
/// Vector2 measurements = 3.0 + 2.0 * time;
/// if (auto const solved = LAPACK::gels(NoTranspose, model, measurements); !solved)
///     return solved.error();
/// double const offset = measurements[0];              // 3: the first elements are the fitted parameters
/// double const slope = measurements[1];               // 2
/// @endcode
///
/// Everything is solved in place: the drivers overwrite their arguments. Each call takes the workspace that
/// the driver asks for and releases it on every path. There is one right-hand side, which is never resized.
/// Calls on different containers may run on any threads at once; oneMKL may use threads of its own inside a
/// call. A host that has unmasked floating-point exceptions is not trapped inside a driver: those underflow,
/// and for an A that is not of full rank overflow too, on the way to their results.
///
/// What a driver refuses comes back as `InvalidParameter`, what it could not compute as another code; in both
/// cases the arguments hold what the driver left in them. When a check before the driver fails they are
/// untouched. An empty row, whose shape fits one equation, and a moved-from Matrix2, which keeps its shape,
/// are a mismatch of dimensions.
///
/// E. Anderson et al., LAPACK Users' Guide, 3rd ed., SIAM 1999, describes the drivers of the same names.

#include <Math/Export.h>
#include <Math/Matrix2.h>
#include <Math/Transpose.h>
#include <Math/Vector2.h>
#include <System/ErrorCode.h>
#include <System/Expected.h>

namespace Tervane::Math {

class Matrix;
class Vector;

namespace LAPACK {

/// Solves A x = b by LU factorisation with partial pivoting; x replaces b, the factors replace A, also where
/// a pivot is zero: a zero on A's diagonal then is at the place of an unknown that the equations do not fix.
/// A system that is singular up to rounding, and a NaN in A or b, succeed: check the result.
///
/// @param A a square matrix
/// @param b a column with an element for each row of A
/// @return `LinearAlgebraErrc::SolutionNotComputed` for a pivot that is exactly zero (compatibility C49):
///         mend the system. For an A that is not square, or whose row count is not b.rows(), for a b that is
///         an empty row, and for an A that was moved from, the error -1 of the system category ("Unknown
///         error -1") and no code of the linear-algebra category (compatibility C50): compare the shapes
///         first.
///
/// Complexity: O(n^3).
TVNMATH_API System::Expected<void, System::ErrorCode2> gesv(Matrix2& A, Vector2& b);

/// Minimises ||b - op(A) x|| for an A of full rank by QR or LQ factorisation, or finds the x of least norm
/// when the system is underdetermined. x replaces the leading elements of b, which is not shortened: past x
/// stand the residuals' coordinates (compatibility C52).
///
/// @param trans NoTranspose or Transposed; `ConjugateTransposed` is refused, since the driver for real
///        numbers does not know it (compatibility C53)
/// @param A a matrix of full rank, m x n; its factors replace it
/// @param b a column with room for the longer of the two sides of A; a row, or a vector too short, is refused
///        (compatibility C51)
/// @return `LinearAlgebraErrc::InvalidParameter` for what the driver refuses, `LeastSquaresFailed` when A is
///         exactly rank-deficient: gelsd() solves such a problem
///
/// Complexity: O(m n min(m, n)).
TVNMATH_API System::Expected<void, System::ErrorCode2> gels(Transpose trans, Matrix2& A, Vector2& b);

/// Finds the x of least norm that minimises ||b - A x|| by singular value decomposition, divide and conquer;
/// A may be rank-deficient. x replaces the leading elements of b. The rank and the singular values are not
/// returned.
///
/// @param A any matrix, m x n; the driver overwrites it
/// @param b a column with room for the longer of the two sides of A
/// @param rcond singular values below rcond times the largest count as zero; a negative one means the machine
///        precision
/// @return `LinearAlgebraErrc::InvalidParameter` for what the driver refuses, `LeastSquaresFailed` when the
///         decomposition does not converge
///
/// Complexity: O(m n min(m, n)).
TVNMATH_API System::Expected<void, System::ErrorCode2> gelsd(Matrix2& A, Vector2& b, double const& rcond);

/// Minimises ||c - A x|| subject to B x = d, by a generalised RQ factorisation. A, B, c and d are
/// overwritten.
///
/// @param A m x n, neither of them 0
/// @param B p x n, with p <= n <= m + p
/// @param c at least m elements; a longer one is read in part
/// @param d at least p elements; a longer one is read in part
/// @return x, a column of n elements; `LinearAlgebraErrc::InvalidParameter` for an A without rows or columns
///         (compatibility C54) and for what the driver refuses, `DimensionsMismatch` when A and B differ in
///         columns or c or d is too short, `ConstraintRankDeficient` when the rows of B are not independent,
///         `SystemRankDeficient` when A and B together do not fix x
///
/// Complexity: O(n^2 (m + p)).
TVNMATH_API System::Expected<Vector2, System::ErrorCode2> gglse(Matrix2& A, Matrix2& B, Vector2& c,
                                                                Vector2& d);

/// @name Legacy
/// @{

/// As the current forms, with the codes of LinearAlgebraErrorCode in `error`, which is left as it is on
/// success (compatibility C8). Here `gesv` does tell MatrixNotSquare and DimensionsMismatch. An exception, of
/// a failed allocation for example, is described in `error` too (compatibility C55). `gelsd` takes the error
/// before rcond. `gglse` gives an empty vector on any error.
TVNMATH_API void gesv(Matrix& A, Vector& b, System::ErrorCode& error);
TVNMATH_API void gels(Transpose trans, Matrix& A, Vector& b, System::ErrorCode& error);
TVNMATH_API void gelsd(Matrix& A, Vector& b, System::ErrorCode& error, double const& rcond);
TVNMATH_API Vector gglse(Matrix& A, Matrix& B, Vector& c, Vector& d, System::ErrorCode& error);
/// @}

} // namespace LAPACK

} // namespace Tervane::Math

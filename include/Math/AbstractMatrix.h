#pragma once

/// @file
/// What the linear algebra takes as a matrix.
///
/// @code
/// using namespace Tervane::Math;
/// Matrix const a(2, 3, 1.0);
/// Matrix const weights(3, 2, 0.5);
/// Tervane::System::ErrorCode error;
/// Matrix const weighted = a.elementwiseMultiply(weights, error);
/// if (error.hasError())
///     std::cerr << error.message() << '\n';     // dimensions mismatch
/// @endcode
///
/// Include <Math/Matrix.h> and <Math/Vector.h> to use what the products return.

#include <Math/AbstractDataTable.h>
#include <Math/MatrixLayout.h>

namespace Tervane::System {
class ErrorCode;
}

namespace Tervane::Math {

class AbstractVector;
class Matrix;
class Vector;

/// A table that the linear algebra accepts as a matrix. The wrappers of BLAS and LAPACK read its shape
/// through rows() and columns() and its elements column after column from data(); elementwiseMultiply() reads
/// them one at a time, so it takes any layout.
class TVNMATH_API AbstractMatrix : public AbstractDataTable {
public:
    AbstractMatrix() noexcept = default;
    /// There is no state to copy or move.
    AbstractMatrix(AbstractMatrix const&) noexcept = default;
    /// There is no state to copy or move.
    AbstractMatrix(AbstractMatrix&&) noexcept = default;
    /// There is no state to assign.
    AbstractMatrix& operator=(AbstractMatrix const&) noexcept = default;
    /// There is no state to assign.
    AbstractMatrix& operator=(AbstractMatrix&&) noexcept = default;
    ~AbstractMatrix() override;

    /// The order of the elements behind data().
    virtual MatrixLayout majorOrder() const = 0;

    /// Whether there are as many columns as rows, and any at all: an empty matrix is not square
    /// (compatibility C25).
    bool isSquare() const;

    /// The element-by-element product of this matrix and `b`, on the calling thread.
    ///
    /// Both operands are read through their virtual element access and nothing else, row after row, so any
    /// two tables will do (compatibility C76).
    ///
    /// @param error set on failure, left as it is on success: LinearAlgebraErrorCode::DimensionsMismatch when
    ///              the shapes differ, and unknown when anything else goes wrong, an exception of an
    ///              operand's element access included. Nothing is thrown as long as there is memory for an
    ///              empty matrix.
    /// @return the product; an empty matrix on failure
    Matrix elementwiseMultiply(AbstractMatrix const& b, System::ErrorCode& error) const;

    /// @name Products
    /// @{

    /// this · b and this · x, as BLAS::gemm and BLAS::gemv compute them without a transposition.
    ///
    /// @param error set on failure, left as it is on success: LinearAlgebraErrorCode::DimensionsMismatch when
    ///              the shapes do not fit
    /// @return what BLAS::gemm and BLAS::gemv return, on failure too (compatibility C46)
    Matrix multiply(AbstractMatrix const& b, System::ErrorCode& error) const;
    Vector multiply(AbstractVector const& x, System::ErrorCode& error) const;
    /// @}
};

} // namespace Tervane::Math

#pragma once

#include <Math/AbstractMatrix.h>
#include <Math/AbstractVector.h>
#include <Math/Matrix.h>
#include <Math/Transpose.h>
#include <Math/Vector.h>
#include <System/ErrorCode.h>

namespace Tervane::Math::Detail {

/// @name Products of the legacy generation as new objects
/// What the short forms of BLAS::gemm and BLAS::gemv and the members AbstractMatrix::multiply have in common.
/// A result that was made is returned even when an error is reported.
/// @{

/// alpha op(A) op(B)
Matrix product(Transpose transA, Transpose transB, double alpha, AbstractMatrix const& A,
               AbstractMatrix const& B, System::ErrorCode& error);

/// alpha op(A) x
Vector product(Transpose trans, double alpha, AbstractMatrix const& A, AbstractVector const& x,
               System::ErrorCode& error);
/// @}

} // namespace Tervane::Math::Detail

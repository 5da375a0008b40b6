#pragma once

/// @file
/// Scalar functions applied to every element of a vector.
///
/// @code
/// using namespace Tervane::Math;
/// Vector2 const phase = linspace(0.0, 6.283185307179586, 1000);
/// Vector2 const level = log10(abs(sin(phase)));    // one allocation: temporaries lend their storage
/// @endcode

#include <Math/ComplexVector.h>
#include <Math/ComplexVector2.h>
#include <Math/Export.h>
#include <Math/Vector.h>
#include <Math/Vector2.h>

namespace Tervane::Math {

/// @name Functions of real vectors
/// @{

/// result[k] = f(x[k]), in the argument's length and orientation, computed where the execution policy says.
/// Every element is, bit for bit, what the scalar function of the run-time library gives for it, under every
/// policy: `std::sin`, `std::cos`, `std::exp`, `std::log10`, `std::sqrt`, and for `pow` `std::pow(x[k],
/// double(n))`, the general power function (compatibility C36), so that a negative exponent of zero gives an
/// infinity and the exponent 0 gives 1 for every x, NaN included. `abs` clears the sign bit, so -0.0 becomes
/// 0.0 and a NaN keeps its payload.
///
/// A vector given as rvalue lends its storage and nothing is allocated: a Vector2 is left empty, a Vector
/// moved-from. Of any other the result is new, written in one pass, and allocates once. A view is not
/// accepted; make a vector of it first.
///
/// No error is reported to the caller: outside a function's domain the element is what the scalar function
/// returns, a NaN or an infinity. The run-time library's own report, `errno`, is made on the thread that
/// computes the element (compatibility C82).
///
/// @throws std::bad_alloc when a new result cannot be allocated
TVNMATH_API Vector2 abs(Vector2&& x);
TVNMATH_API Vector2 abs(Vector2 const& x);
TVNMATH_API Vector2 sin(Vector2&& x);
TVNMATH_API Vector2 sin(Vector2 const& x);
TVNMATH_API Vector2 cos(Vector2&& x);
TVNMATH_API Vector2 cos(Vector2 const& x);
TVNMATH_API Vector2 exp(Vector2&& x);
TVNMATH_API Vector2 exp(Vector2 const& x);
TVNMATH_API Vector2 log10(Vector2&& x);
TVNMATH_API Vector2 log10(Vector2 const& x);
TVNMATH_API Vector2 sqrt(Vector2&& x);
TVNMATH_API Vector2 sqrt(Vector2 const& x);
TVNMATH_API Vector2 pow(Vector2&& x, int n);
TVNMATH_API Vector2 pow(Vector2 const& x, int n);

TVNMATH_API Vector abs(Vector&& x);
TVNMATH_API Vector abs(Vector const& x);
TVNMATH_API Vector sin(Vector&& x);
TVNMATH_API Vector sin(Vector const& x);
TVNMATH_API Vector cos(Vector&& x);
TVNMATH_API Vector cos(Vector const& x);
TVNMATH_API Vector exp(Vector&& x);
TVNMATH_API Vector exp(Vector const& x);
TVNMATH_API Vector log10(Vector&& x);
TVNMATH_API Vector log10(Vector const& x);
TVNMATH_API Vector sqrt(Vector&& x);
TVNMATH_API Vector sqrt(Vector const& x);
TVNMATH_API Vector pow(Vector&& x, int n);
TVNMATH_API Vector pow(Vector const& x, int n);
/// @}

/// @name Magnitudes of complex vectors
/// @{

/// result[k] = `std::hypot` of the parts of z[k], which neither overflows nor underflows on the way. The
/// result is a column, of a row too (compatibility C37). Computed where the execution policy says.
///
/// @throws std::bad_alloc when the result cannot be allocated
TVNMATH_API Vector2 abs(ComplexVector2 const& z);
TVNMATH_API Vector abs(ComplexVector const& z);
/// @}

} // namespace Tervane::Math

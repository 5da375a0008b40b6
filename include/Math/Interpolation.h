#pragma once

/// @file
/// Piecewise linear interpolation in a table.
///
/// @code
/// using namespace Tervane::Math;
/// double const temperatures[] = {-40.0, 25.0, 125.0};
/// double const resistances[] = {84.0, 110.0, 148.0};
/// Vector2 const xp(temperatures, 3);
/// Vector2 const fp(resistances, 3);
/// double const r = interp(60.0, xp, fp);
/// Vector2 const curve = interp(linspace(-40.0, 125.0, 100), xp, fp);
/// @endcode

#include <Math/Export.h>
#include <Math/Vector.h>
#include <Math/Vector2.h>
#include <Math/VectorView2.h>
#include <Math/ViewVector.h>

namespace Tervane::Math {

/// @name Interpolation
/// @{

/// For each element q of `x` the value at q of the function that runs straight from (xp[k-1], fp[k-1]) to
/// (xp[k], fp[k]), where k is the first index with xp[k] >= q:
/// `std::lerp(fp[k-1], fp[k], (q - xp[k-1]) / (xp[k] - xp[k-1]))`.
///
/// Outside the table the end values are held: above the last breakpoint the last element of `fp` (of its own
/// length, should it be longer than `xp`; compatibility C40), up to the first breakpoint fp[0]. A query equal
/// to several equal breakpoints gets the value at the first of them (compatibility C42). A NaN counts as
/// below the table.
///
/// The result has the length and orientation of `x`. An rvalue lends its storage and is left empty; otherwise
/// the result is new. Computed where the execution policy says, with the same values under all of them, in
/// O(log n) for each element. An rvalue that is also the table, or part of it, is computed in order on the
/// calling thread, since each value changes the table for those after it.
///
/// @param x the queries
/// @param xp the breakpoints, in ascending order
/// @param fp the values: one for each breakpoint, and at least one
/// @throws std::bad_alloc when a new result cannot be allocated
TVNMATH_API Vector2 interp(Vector2&& x, Vector2 const& xp, VectorView2 const& fp);
TVNMATH_API Vector2 interp(Vector2&& x, Vector2 const& xp, Vector2 const& fp);
TVNMATH_API Vector2 interp(Vector2 const& x, Vector2 const& xp, VectorView2 const& fp);
TVNMATH_API Vector2 interp(Vector2 const& x, Vector2 const& xp, Vector2 const& fp);

/// One value, the same as the vector forms give.
TVNMATH_API double interp(double const& x, Vector2 const& xp, Vector2 const& fp);
/// @}

/// @name Interpolation of legacy vectors
/// @{

/// As above but for one difference: up to the first breakpoint the result is xp[0], the breakpoint itself,
/// not fp[0] (compatibility C41).
///
/// An `fp` of a class that derives from ViewVector is read through its virtual operations, on the calling
/// thread and for one element after the other. What they throw comes out; an `x` that was given away then
/// holds the values so far and stays the caller's.
TVNMATH_API Vector interp(Vector&& x, Vector const& xp, ViewVector const& fp);
TVNMATH_API Vector interp(Vector const& x, Vector const& xp, ViewVector const& fp);
TVNMATH_API Vector interp(Vector const& x, Vector const& xp, Vector const& fp);
/// @}

} // namespace Tervane::Math

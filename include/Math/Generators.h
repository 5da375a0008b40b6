#pragma once

/// @file
/// New vectors of regular values. The legacy generation's arange and linspace are static members of Vector.
///
/// @code
/// using namespace Tervane::Math;
/// Vector2 const samples = arange(1024);               // 0, 1, … 1023
/// Vector2 const time = linspace(0.0, 1e-3, 1025);     // both ends included
/// @endcode
///
/// All run on the calling thread whatever the execution policy. They throw `std::bad_alloc` when the result
/// cannot be allocated, and `std::length_error` ("vector too long") for more than 2^61 - 1 elements.

#include <Math/Export.h>
#include <Math/Vector.h>
#include <Math/Vector2.h>

#include <cstddef>

namespace Tervane::Math {

/// @name Zeros
/// @{

/// A column of `n` zeros, in either generation.
TVNMATH_API Vector2 zeros(std::size_t n);
TVNMATH_API Vector zeros_old(std::size_t n);
/// @}

/// A column of 0, 1, … stop - 1; empty when `stop` is not positive.
TVNMATH_API Vector2 arange(int stop);

/// A column of start, start + 1, … stop - 1; empty when `stop` is not above `start`.
///
/// Length and values are counted in 32-bit arithmetic that wraps: a distance of 2^31 or more gives a length
/// that is smaller by 2^32, so none for most such ranges, and past the largest integer the values go on from
/// the smallest (compatibility C38).
TVNMATH_API Vector2 arange(int start, int stop);

/// A column of `n` points from `start` to `stop`, each the one before plus (stop - start) / (n - 1): a
/// running sum, so that rounding accumulates. The last is exactly `stop`, also when it is the only one
/// (compatibility C39). Empty for no points.
TVNMATH_API Vector2 linspace(double const& start, double const& stop, std::size_t n);

} // namespace Tervane::Math

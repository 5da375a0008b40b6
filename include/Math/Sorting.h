#pragma once

/// @file
/// Vectors in ascending order. The legacy generation sorts with the member Vector::sort.
///
/// @code
/// using namespace Tervane::Math;
/// Vector2 const samples = Random::uniform(0.0, 1.0, 101);
/// double const median = sort(samples)[samples.length() / 2];
/// @endcode

#include <Math/Export.h>
#include <Math/Vector2.h>

namespace Tervane::Math {

/// @name Sorted vectors
/// @{

/// The elements in ascending order, in the argument's orientation. Equal elements, 0.0 and -0.0 among them,
/// may change places, and every element comes back as it was, to the last bit. An rvalue lends its storage
/// and is left empty; otherwise the result is new. Runs on the calling thread whatever the execution policy,
/// in O(n log n).
///
/// NaNs come last, in no order among themselves.
///
/// @throws std::bad_alloc when a new result cannot be allocated
TVNMATH_API Vector2 sort(Vector2&& x);
TVNMATH_API Vector2 sort(Vector2 const& x);
/// @}

} // namespace Tervane::Math

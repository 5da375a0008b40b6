#pragma once

/// @file
/// A number out of a whole vector.
///
/// @code
/// using namespace Tervane::Math;
/// Vector2 const ripple = 1e-3 * sin(0.1 * arange(1000));
/// double const peak = max(abs(ripple));
/// double const average = sum(ripple) / double(len(ripple));    // mean(ripple) may differ in its last bits
/// @endcode

#include <Math/Export.h>
#include <Math/Vector.h>
#include <Math/Vector2.h>
#include <Math/VectorView2.h>

#include <cstddef>

namespace Tervane::Math {

/// @name Sum
/// @{

/// The sum of the elements; 0.0 for none.
///
/// The execution policy decides its order. Under the parallel policies that order is not fixed. Under any
/// other it is, so that a sum has the same bits on every machine: four running sums over the elements whose
/// index is 0, 1, 2, 3 modulo 4, joined as `0.0 + ((s0 + s2) + (s1 + s3))`, then the up to three elements
/// left over. Compatibility C12 describes the order in full.
TVNMATH_API double sum(Vector2 const& x);
TVNMATH_API double sum(Vector const& x);
/// @}

/// @name Mean
/// @{

/// The elements added from left to right on the calling thread whatever the execution policy, divided by
/// their number: so it may differ from the sum divided by the length in its last bits (compatibility C11 and
/// C13). A NaN for none.
TVNMATH_API double mean(Vector2 const& x);
TVNMATH_API double mean(Vector const& x);
/// @}

/// @name Maximum
/// @{

/// The largest element, the first of several equal ones, so that of 0.0 and -0.0 the first counts. A NaN in
/// front is the result, a NaN anywhere else is passed over, as in `std::max_element`; a quiet NaN for an
/// empty vector (compatibility C43). Runs on the calling thread whatever the execution policy.
TVNMATH_API double max(Vector2 const& x);
TVNMATH_API double max(Vector const& x);
/// @}

/// @name Length
/// @{

/// The number of elements, what `length()` of the type answers.
TVNMATH_API std::size_t len(Vector2 const& x);
TVNMATH_API std::size_t len(VectorView2 const& x);
TVNMATH_API std::size_t len(Vector const& x);
/// @}

} // namespace Tervane::Math

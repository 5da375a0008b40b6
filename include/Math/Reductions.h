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
/// The execution policy decides its order, which is fixed under each, so that a sum has the same bits on
/// every machine.
///
/// Under `Parallel` and `ParallelUnsequenced`, alike and whatever the number of threads: blocks of 8,192
/// elements, or of the next power of two that makes at most 256 blocks. In each block 32 running sums over
/// the elements whose index in the block is 0, 1, ..., 31 modulo 32, for as many whole rounds as it has; they
/// are joined to 8, s[k] = (r[k] + r[k + 8]) + (r[k + 16] + r[k + 24]), which go on with what is left in
/// eights; those to 4, t[k] = s[k] + s[k + 4], and to one, (t[0] + t[2]) + (t[1] + t[3]); the up to seven
/// elements left over are added one at a time. The sums of the blocks are joined in a tree, neighbours first.
///
/// Under any other policy: four running sums over the elements whose index is 0, 1, 2, 3 modulo 4, joined as
/// `0.0 + ((s0 + s2) + (s1 + s3))`, then the up to three elements left over. Compatibility C12 describes the
/// order in full. It is bound by the latency of the addition, and takes two to three times as long.
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

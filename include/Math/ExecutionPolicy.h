#pragma once

/// @file
/// How element-wise work runs: one choice for the whole process.
///
/// @code
/// Tervane::Math::setExecutionPolicy(Tervane::Math::Inline);   // from here on one thread does all
/// @endcode

#include <Math/Export.h>

#include <cstdint>

namespace Tervane::Math {

/// Where the loop of an element-wise operation runs. Each element's value is the same under all of them; only
/// `sum` may differ in its last bits between the parallel policies and the others.
enum AlgorithmExecutionPolicy : std::int32_t {
    Inline = 0,   ///< the library's own vectorised loop on the calling thread; so does any value not listed
    Parallel = 1, ///< the standard parallel algorithms, parallel policy
    ParallelUnsequenced =
        2,         ///< the standard parallel algorithms, parallel unsequenced policy; the initial value
    Sequenced = 3, ///< the standard serial algorithms
};

/// Chooses how element-wise operations of this process run from their next call on.
///
/// Meant to be called once, at start-up, but safe from any thread at any time: an operation reads the choice
/// once when it begins. The value is not validated, and there is no function to read it back (compatibility
/// C10). Where an operation's output overlaps an input in part, the policies without threads compute the
/// elements in ascending order (compatibility C14); under the parallel ones the result is not determined.
/// Under the parallel policies a range too short to repay the hand-over to other threads runs on the calling
/// one.
TVNMATH_API void setExecutionPolicy(AlgorithmExecutionPolicy policy) noexcept;

} // namespace Tervane::Math

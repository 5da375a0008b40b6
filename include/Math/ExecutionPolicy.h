#pragma once

/// @file
/// How element-wise work runs: one choice for the whole process.
///
/// @code
/// Tervane::Math::setExecutionPolicy(Tervane::Math::Inline);   // nothing leaves the calling thread from here
/// on
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
/// once when it begins. The value is not validated, and there is no function to read it back. Under the
/// parallel policies a range too short to repay the hand-over to other threads runs on the calling one.
TVNMATH_API void setExecutionPolicy(AlgorithmExecutionPolicy policy) noexcept;

} // namespace Tervane::Math

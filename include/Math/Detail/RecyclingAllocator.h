#pragma once

/// @file
/// The allocator between the containers of real numbers and AlignedAllocator. Not an interface for callers.

#include <Math/Export.h>

#include <cstddef>
#include <type_traits>

namespace Tervane::Math::Detail {

/// Takes storage for real elements from AlignedAllocator and keeps what comes back for the next container
/// that asks: oneMKL's accounting makes a pair of its calls cost more than the arithmetic on a hundred
/// elements.
///
/// Blocks of at most 4,096 elements are kept, by size class and by thread, no more than 868 KiB a thread:
/// sixteen blocks of each class up to 4 KiB, and two of the largest. A block may come back on another thread
/// than it was taken on. A thread that ends returns what it keeps to oneMKL, and so does the thread that
/// unloads the library or ends the process. Before a thread's first return, after its end and once memory has
/// run out, blocks go straight through. Larger blocks always do; those from 4 MiB on ask the system for huge
/// pages.
///
/// A block may be up to a quarter longer than was asked for, which the containers do not show.
///
/// The build option `TVNMATH_RECYCLE_STORAGE` and every sanitizer leave only AlignedAllocator.
///
/// Stateless: all instances are interchangeable. Safe from any thread; not from a signal handler.
class RecyclingAllocator {
public:
    using value_type = double;
    using is_always_equal = std::true_type;

    /// The most elements of a block that is kept.
    static constexpr std::size_t longestKept = 4'096;

    /// Uninitialised storage for `n` doubles on a 64-byte boundary; null for none. Fails only where
    /// AlignedAllocator does.
    ///
    /// @throws std::bad_alloc when the memory cannot be had
    [[nodiscard]] TVNMATH_API double* allocate(std::size_t n);

    /// Takes back what allocate() returned.
    ///
    /// @pre `n` is the count that was asked for, or `p` is null.
    TVNMATH_API void deallocate(double* p, std::size_t n) noexcept;

    friend constexpr bool operator==(RecyclingAllocator const&, RecyclingAllocator const&) noexcept {
        return true;
    }
};

/// @name For tests that count allocations or let them fail
/// Between the two calls the calling thread keeps nothing, so that every allocation is a new one.
/// @{
TVNMATH_API void suspendRecycling() noexcept;
TVNMATH_API void resumeRecycling() noexcept;
/// @}

} // namespace Tervane::Math::Detail

#pragma once

/// @file
/// Counts heap allocations, those inside shared libraries included, makes large ones fail, and measures the
/// heap.

#include <cstddef>

namespace Tervane::Math::TestKit {

/// Counts what the calling thread takes from the heap while it lives. Scopes do not nest.
class AllocationCounter {
public:
    AllocationCounter();
    ~AllocationCounter();

    AllocationCounter(AllocationCounter const&) = delete;
    AllocationCounter& operator=(AllocationCounter const&) = delete;

    /// Allocations so far.
    std::size_t count() const;

    /// Bytes asked for so far.
    std::size_t bytes() const;
};

/// Lets the calling thread's allocations above a size fail while it lives.
class FailingAllocations {
public:
    explicit FailingAllocations(std::size_t largestThatSucceeds);
    ~FailingAllocations();

    FailingAllocations(FailingAllocations const&) = delete;
    FailingAllocations& operator=(FailingAllocations const&) = delete;

    /// False in the sanitizers' builds, whose heap cannot be made to fail.
    static bool areSupported();
};

/// Bytes of the heap that are in use now, by whomever.
std::size_t heapInUse();

} // namespace Tervane::Math::TestKit

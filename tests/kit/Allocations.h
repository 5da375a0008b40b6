#pragma once

/// @file
/// Counts heap allocations, those inside shared libraries included, makes large ones or those of a place in
/// their order fail, and measures the heap.

#include <cstddef>

namespace Tervane::Math::TestKit {

/// Whether the library may give a container storage that it has kept, which the heap does not see. Where it
/// may not, every container that asks for storage is seen to ask.
enum class KeptStorage { Suspended, Allowed };

/// Counts what the calling thread takes from the heap while it lives. Scopes do not nest.
class AllocationCounter {
public:
    explicit AllocationCounter(KeptStorage keptStorage = KeptStorage::Suspended);
    ~AllocationCounter();

    AllocationCounter(AllocationCounter const&) = delete;
    AllocationCounter& operator=(AllocationCounter const&) = delete;

    /// Allocations so far.
    std::size_t count() const;

    /// Bytes asked for so far.
    std::size_t bytes() const;

private:
    KeptStorage _keptStorage;
};

/// Lets the calling thread's allocations above a size fail while it lives.
class FailingAllocations {
public:
    explicit FailingAllocations(std::size_t largestThatSucceeds,
                                KeptStorage keptStorage = KeptStorage::Suspended);
    ~FailingAllocations();

    FailingAllocations(FailingAllocations const&) = delete;
    FailingAllocations& operator=(FailingAllocations const&) = delete;

    /// False in the sanitizers' builds and under valgrind, whose heap cannot be made to fail.
    static bool areSupported();

private:
    KeptStorage _keptStorage;
};

/// Lets one allocation of the process fail, or all from one on, while it lives; whichever thread asks. Scopes
/// do not nest.
class FaultyHeap {
public:
    enum class Faults { One, AllFromThere };

    /// @param n the allocation that fails first, counted from 1
    /// @param leastBytes only allocations of so many bytes are counted and fail, so that the large blocks of
    /// elements can be told from everything else
    FaultyHeap(std::size_t n, Faults faults, std::size_t leastBytes = 0);
    ~FaultyHeap();

    FaultyHeap(FaultyHeap const&) = delete;
    FaultyHeap& operator=(FaultyHeap const&) = delete;

    /// Allocations so far, those that failed included.
    std::size_t count() const;

    /// False in the sanitizers' builds, whose heap cannot be made to fail.
    static bool isSupported();
};

/// Bytes of the heap that are in use now, by whomever.
std::size_t heapInUse();

} // namespace Tervane::Math::TestKit

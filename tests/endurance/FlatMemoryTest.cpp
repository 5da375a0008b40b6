// Memory stays flat however often each operation is called: a million times in the long form.

#include "endurance/Operations.h"
#include "kit/Allocations.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace Tervane::Math::Endurance {

namespace {

/// The process's memory that is not given back to the system, from wherever.
std::ptrdiff_t residentBytes() {
    std::ifstream statm("/proc/self/statm");
    std::ptrdiff_t total = 0;
    std::ptrdiff_t resident = 0;
    statm >> total >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

TEST(FlatMemory, HoldsForEveryOperation) {
    std::size_t const calls = isLongForm() ? 1'000'000 : 1'000;
    // Less than a pointer a call in the long form; in the quick one a leak of a vector of 16 elements shows.
    constexpr std::ptrdiff_t mostBytes = 64 * 1024;
    std::ptrdiff_t mostHeap = 0, mostResident = 0;
    std::vector<Operation> const operations = everyOperation(16);
    for (Operation const& operation : operations) {
        SCOPED_TRACE(operation.name);
        for (int i = 0; i < 100; ++i)
            operation.run();
        auto const before = static_cast<std::ptrdiff_t>(TestKit::heapInUse());
        std::ptrdiff_t const residentBefore = residentBytes();
        for (std::size_t i = 0; i < calls; ++i)
            operation.run();
        std::ptrdiff_t const heapGrowth = static_cast<std::ptrdiff_t>(TestKit::heapInUse()) - before;
        std::ptrdiff_t const residentGrowth = residentBytes() - residentBefore;
        EXPECT_LT(heapGrowth, mostBytes);
        // Sanitizers keep what is released for a while.
        if (TestKit::FailingAllocations::areSupported()) {
            EXPECT_LT(residentGrowth, std::ptrdiff_t{4} << 20);
        }
        mostHeap = std::max(mostHeap, heapGrowth);
        mostResident = std::max(mostResident, residentGrowth);
    }
    RecordProperty("operations", static_cast<int>(operations.size()));
    RecordProperty("most_heap_growth_in_bytes", static_cast<int>(mostHeap));
    RecordProperty("most_resident_growth_in_bytes", static_cast<int>(mostResident));
}

} // namespace

} // namespace Tervane::Math::Endurance

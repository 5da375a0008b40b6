#include "kit/Allocations.h"

#include <Math/AlignedAllocator.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>
#include <vector>

namespace Tervane::Math {

namespace {

static_assert(std::is_empty_v<AlignedAllocator>);
static_assert(std::allocator_traits<AlignedAllocator>::is_always_equal::value);

TEST(AlignedAllocator, AlignsEveryBlockToSixtyFourBytes) {
    AlignedAllocator allocator;
    for (std::size_t n = 1; n < 300; ++n) {
        double* const p = allocator.allocate(n);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(p) % 64, 0u) << n;
        p[0] = 1.0;
        p[n - 1] = 2.0;
        allocator.deallocate(p, n);
    }
}

TEST(AlignedAllocator, GivesNullForNothing) {
    AlignedAllocator allocator;
    EXPECT_EQ(allocator.allocate(0), nullptr);
    allocator.deallocate(nullptr, 0);
}

TEST(AlignedAllocator, IgnoresTheCountOnRelease) {
    AlignedAllocator allocator;
    allocator.deallocate(allocator.allocate(10), 7);
}

TEST(AlignedAllocator, ThrowsWhenMemoryCannotBeHad) {
    AlignedAllocator allocator;
    EXPECT_THROW(static_cast<void>(allocator.allocate(SIZE_MAX / 8)), std::bad_alloc);
    EXPECT_THROW(static_cast<void>(allocator.allocate(SIZE_MAX)), std::bad_alloc);
    // Whose bytes wrap around to 8.
    EXPECT_THROW(static_cast<void>(allocator.allocate((std::size_t{1} << 61) + 1)), std::bad_alloc);
    if (TestKit::FailingAllocations::areSupported()) {
        TestKit::FailingAllocations const failing(1000);
        EXPECT_THROW(static_cast<void>(allocator.allocate(1000)), std::bad_alloc);
    }
}

TEST(AlignedAllocator, ComparesEqualAlways) {
    EXPECT_TRUE(AlignedAllocator() == AlignedAllocator());
}

TEST(AlignedAllocator, ServesTheStandardContainers) {
    std::vector<double, AlignedAllocator> v(100, 1.5);
    v.push_back(2.5);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(v.data()) % 64, 0u);
    EXPECT_EQ(v.back(), 2.5);
}

} // namespace

} // namespace Tervane::Math

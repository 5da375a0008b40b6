#include "signal/DescriptorReserve.h"

#include "kit/Allocations.h"

#include <gtest/gtest.h>

#include <i_malloc.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

namespace Tervane::Math::Detail {

namespace {

/// Whether the block holds nothing but this byte.
bool isFilledWith(int byte, void const* block, std::size_t n) {
    auto const* const bytes = static_cast<unsigned char const*>(block);
    return std::all_of(bytes, bytes + n, [byte](unsigned char b) { return b == byte; });
}

TEST(DescriptorReserve, HandsOutBlocksThatAreApartUntilAllAreInUse) {
    DescriptorReserve reserve;
    std::vector<void*> taken;
    for (std::size_t i = 0; i < DescriptorReserve::blocks; ++i) {
        void* const p = reserve.take(DescriptorReserve::blockSize);
        ASSERT_NE(p, nullptr);
        EXPECT_TRUE(reserve.owns(p));
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(p) % 64, 0u);
        std::memset(p, static_cast<int>(i), DescriptorReserve::blockSize);
        taken.push_back(p);
    }
    for (std::size_t i = 0; i < taken.size(); ++i)
        EXPECT_TRUE(isFilledWith(static_cast<int>(i), taken[i], DescriptorReserve::blockSize)) << i;
    EXPECT_EQ(reserve.take(1), nullptr);
}

TEST(DescriptorReserve, RefusesWhatIsLargerThanABlock) {
    DescriptorReserve reserve;
    EXPECT_EQ(reserve.take(DescriptorReserve::blockSize + 1), nullptr);
    EXPECT_NE(reserve.take(DescriptorReserve::blockSize), nullptr);
}

TEST(DescriptorReserve, OwnsItsMemoryOnly) {
    DescriptorReserve reserve, another;
    auto const* const first = static_cast<std::byte const*>(reserve.take(1));
    constexpr std::size_t bytes = DescriptorReserve::blocks * DescriptorReserve::blockSize;
    EXPECT_TRUE(reserve.owns(first));
    EXPECT_TRUE(reserve.owns(first + bytes - 1));
    EXPECT_FALSE(reserve.owns(first - 1));
    EXPECT_FALSE(reserve.owns(first + bytes));
    EXPECT_FALSE(another.owns(first));
    EXPECT_FALSE(reserve.owns(nullptr));
}

// What oneMKL calls.
TEST(DescriptorReserve, IsNotTouchedWhileTheHeapGives) {
    DescriptorReserve reserve;
    void* const block = i_malloc(100);
    void* const zeros = i_calloc(10, 10);
    EXPECT_FALSE(reserve.owns(block));
    EXPECT_FALSE(reserve.owns(zeros));
    std::memset(block, 5, 100);
    void* const moved = i_realloc(block, 100'000);
    EXPECT_FALSE(reserve.owns(moved));
    EXPECT_TRUE(isFilledWith(5, moved, 100));
    i_free(moved);
    i_free(zeros);
}

TEST(DescriptorReserve, GivesBackWhatTheHeapGave) {
    if (!TestKit::FailingAllocations::areSupported())
        GTEST_SKIP() << "the heap's bytes are not counted";
    std::size_t const before = TestKit::heapInUse();
    {
        DescriptorReserve const reserve;
        i_free(i_malloc(100'000));
        i_free(i_calloc(100, 1'000));
        i_free(i_realloc(i_malloc(100), 100'000));
    }
    EXPECT_LT(TestKit::heapInUse(), before + 50'000);
}

TEST(DescriptorReserve, StandsInWhereTheHeapRefuses) {
    if (!TestKit::FailingAllocations::areSupported())
        GTEST_SKIP() << "this heap cannot be made to fail";
    constexpr std::size_t size = DescriptorReserve::blockSize;
    DescriptorReserve reserve;
    void* const fromHeap = i_malloc(size);
    std::memset(fromHeap, 5, size);

    void *block, *zeros, *moved, *larger, *largerZeros, *wrapped, *none, *refused;
    {
        TestKit::FailingAllocations const failing(0);
        block = i_malloc(size);
        if (reserve.owns(block)) { // and then is the first of them
            std::memset(block, 7, DescriptorReserve::blocks * size);
            std::memset(block, 9, size);
        }
        moved = i_realloc(block, size);
        zeros = i_calloc(size / 8, 8);
        larger = i_malloc(size + 1);
        largerZeros = i_calloc(size / 8 + 1, 8);
        // A product that would wrap to 0.
        wrapped = i_calloc(std::size_t{1} << 60, 16);
        none = i_calloc(1, 0);
        refused = i_realloc(fromHeap, 2 * size);
    }
    for (void const* p : {block, moved, zeros}) {
        ASSERT_NE(p, nullptr);
        EXPECT_TRUE(reserve.owns(p));
    }
    EXPECT_TRUE(isFilledWith(9, moved, size));
    EXPECT_TRUE(isFilledWith(0, zeros, size));
    EXPECT_EQ(larger, nullptr);
    EXPECT_EQ(largerZeros, nullptr);
    EXPECT_EQ(wrapped, nullptr);
    EXPECT_FALSE(reserve.owns(none));
    EXPECT_EQ(refused, nullptr);
    i_free(block);
    i_free(moved);
    i_free(zeros);
    i_free(none);
    EXPECT_TRUE(isFilledWith(5, fromHeap, size)); // as after any realloc() that fails
    i_free(fromHeap);
}

TEST(DescriptorReserve, EndsWithItsScope) {
    if (!TestKit::FailingAllocations::areSupported())
        GTEST_SKIP() << "this heap cannot be made to fail";
    { DescriptorReserve const reserve; }
    TestKit::FailingAllocations const failing(0);
    EXPECT_EQ(i_malloc(1), nullptr);
    EXPECT_EQ(i_calloc(1, 1), nullptr);
}

} // namespace

} // namespace Tervane::Math::Detail

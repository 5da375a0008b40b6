// The kit is what every other test leans on, so it is shown here to fail where it should.

#include "kit/Allocations.h"
#include "kit/Bits.h"
#include "kit/ErrorBounds.h"
#include "kit/Lengths.h"
#include "kit/Policies.h"
#include "kit/SpecialValues.h"
#include "kit/StreamCapture.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <new>
#include <set>
#include <vector>

namespace Tervane::Math::TestKit {

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(Bits, TellZerosAndNaNsApart) {
    EXPECT_TRUE(sameBits(1.0, 1.0));
    EXPECT_TRUE(sameBits(nan, nan));
    EXPECT_FALSE(sameBits(0.0, -0.0));
    EXPECT_FALSE(sameBits(nan, -nan));
    EXPECT_FALSE(sameBits(nan, fromBits(0x7ff8000000000001)));
    EXPECT_FALSE(sameBits(1.0, std::nextafter(1.0, 2.0)));
}

TEST(Bits, CompareRangesByLengthAndElement) {
    std::vector<double> const a = {1.0, 2.0};
    std::vector<double> const b = {1.0, 2.5};
    EXPECT_TRUE(sameBits(a, a));
    EXPECT_FALSE(sameBits(a, std::vector<double>{1.0}));
    auto const result = sameBits(a, b);
    EXPECT_FALSE(result);
    EXPECT_NE(std::string(result.message()).find("element 1"), std::string::npos);
}

TEST(ErrorBounds, FailOnNaNWhereverItStands) {
    EXPECT_TRUE(within(0.1, 1.05, 1.0));
    EXPECT_FALSE(within(0.1, 1.2, 1.0));
    EXPECT_FALSE(within(infinity, nan, 1.0));
    EXPECT_FALSE(within(infinity, 1.0, nan));
    EXPECT_FALSE(within(infinity, nan, nan));
    EXPECT_FALSE(within(nan, 1.0, 2.0));
    EXPECT_FALSE(withinUlps(1000, nan, nan));
}

TEST(ErrorBounds, TakeOnlyEqualInfinities) {
    EXPECT_TRUE(within(0.0, infinity, infinity));
    EXPECT_FALSE(within(1e300, infinity, -infinity));
    EXPECT_FALSE(within(1e300, 1.0, infinity));
}

TEST(ErrorBounds, CompareRangesByLengthAndElement) {
    EXPECT_TRUE(within(0.1, std::vector<double>{1.0, 2.0}, std::vector<double>{1.05, 1.95}));
    EXPECT_FALSE(within(0.1, std::vector<double>{1.0}, std::vector<double>{1.0, 2.0}));
    EXPECT_FALSE(within(0.1, std::vector<double>{1.0, nan}, std::vector<double>{1.0, 2.0}));
}

TEST(ErrorBounds, CountTheDoublesBetween) {
    EXPECT_TRUE(withinUlps(0, 1.0, 1.0));
    EXPECT_TRUE(withinUlps(1, 1.0, std::nextafter(1.0, 2.0)));
    EXPECT_FALSE(withinUlps(1, 1.0, std::nextafter(std::nextafter(1.0, 2.0), 2.0)));
    EXPECT_TRUE(
        withinUlps(2, std::numeric_limits<double>::denorm_min(), -std::numeric_limits<double>::denorm_min()));
    EXPECT_TRUE(withinUlps(0, 0.0, -0.0));
}

TEST(ErrorBounds, AskForNaNExplicitly) {
    EXPECT_TRUE(isNaN(nan));
    EXPECT_FALSE(isNaN(1.0));
}

TEST(SpecialValues, HoldEveryClassOfBothSigns) {
    std::set<std::pair<int, bool>> classes;
    for (double const x : specialValues())
        classes.insert({std::fpclassify(x), std::signbit(x)});
    EXPECT_EQ(classes.size(), 10u);
}

TEST(SpecialValues, WalkTheWholeRange) {
    std::vector<double> const values = valuesByBitPattern(1000);
    EXPECT_EQ(values.front(), std::numeric_limits<double>::denorm_min());
    EXPECT_GT(std::abs(values.back()), 1e306);
}

TEST(Poisoned, SeesWritesBesideTheRange) {
    for (std::size_t misalignment = 0; misalignment < 8; ++misalignment) {
        Poisoned buffer(5, misalignment);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(buffer.data()) % 64, misalignment * sizeof(double));
        for (std::size_t i = 0; i < 5; ++i) {
            EXPECT_TRUE(isNaN(buffer.data()[i]));
            buffer.data()[i] = 1.0;
        }
        EXPECT_TRUE(buffer.guardsAreIntact());
        buffer.data()[5] = 1.0;
        EXPECT_FALSE(buffer.guardsAreIntact());
    }
}

TEST(Policies, RunTheBodyUnderEachOfThem) {
    int runs = 0;
    forEachPolicy([&] { ++runs; });
    EXPECT_EQ(runs, 5);
}

// Through calls of the operator: a compiler may leave out a new expression whose memory nobody uses.
TEST(Allocations, AreCountedOnTheCallingThread) {
    AllocationCounter const counter;
    EXPECT_EQ(counter.count(), 0u);
    void* const block = ::operator new(800);
    EXPECT_EQ(counter.count(), 1u);
    EXPECT_EQ(counter.bytes(), 800u);
    ::operator delete(block);
}

TEST(Allocations, AreCountedWhenTheyAreAligned) {
    AllocationCounter const counter;
    void* block = nullptr;
    ASSERT_EQ(posix_memalign(&block, 64, 800), 0);
    EXPECT_EQ(counter.count(), 1u);
    EXPECT_EQ(counter.bytes(), 800u);
    std::free(block);
}

TEST(Allocations, CanBeMadeToFail) {
    if (!FailingAllocations::areSupported())
        GTEST_SKIP() << "the sanitizers' heap cannot be made to fail";
    FailingAllocations const failing(1000);
    EXPECT_THROW(::operator delete(::operator new(8000)), std::bad_alloc);
    EXPECT_NO_THROW(::operator delete(::operator new(80)));
}

TEST(StreamCapture, SeesBothStreamsAtEveryLevel) {
    StreamCapture capture;
    std::cout << "one ";
    std::fflush(stdout);
    std::cout.flush();
    std::fputs("two ", stderr);
    EXPECT_EQ(write(STDOUT_FILENO, "three", 5), 5);
    EXPECT_EQ(capture.finish(), "one two three");
}

} // namespace

} // namespace Tervane::Math::TestKit

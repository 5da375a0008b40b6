#include "kit/Allocations.h"
#include "kit/Bits.h"
#include "kit/LengthErrors.h"
#include "kit/SpecialValues.h"

#include <Math/Detail/ComplexArray.h>

#include <gtest/gtest.h>

#include <complex>
#include <cstdint>
#include <limits>
#include <new>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tervane::Math::Detail {

namespace {

using TestKit::AllocationCounter;
using TestKit::lengthErrorOf;
using TestKit::sameBits;

static_assert(sizeof(RealArray) == 3 * sizeof(void*));
static_assert(RealArray::maxLength == 0x1FFFFFFFFFFFFFFF);
static_assert(ComplexArray::maxLength == 0x0FFFFFFFFFFFFFFF);
static_assert(
    std::is_nothrow_move_constructible_v<RealArray> && std::is_nothrow_move_assignable_v<RealArray>);

std::span<double const> elementsOf(RealArray const& a) {
    return {a.begin(), a.end()};
}

RealArray make(std::vector<double> const& values) {
    return RealArray(values.data(), values.size());
}

TEST(ElementArray, AllocatesNothingWhenEmpty) {
    AllocationCounter const counter;
    RealArray const a;
    RealArray const b(0);
    RealArray const c(a);
    EXPECT_EQ(counter.count(), 0u);
    EXPECT_EQ(a.data(), nullptr);
    EXPECT_EQ(b.data(), nullptr);
    EXPECT_EQ(c.length(), 0u);
}

TEST(ElementArray, FillsWithZeroAndWithNegativeZero) {
    EXPECT_TRUE(sameBits(elementsOf(RealArray(37)), std::vector<double>(37, 0.0)));
    EXPECT_TRUE(sameBits(elementsOf(RealArray(37, -0.0)), std::vector<double>(37, -0.0)));
    for (double const x : TestKit::specialValues())
        EXPECT_TRUE(sameBits(elementsOf(RealArray(9, x)), std::vector<double>(9, x)));
}

TEST(ElementArray, CopiesIntoExactlyTheSpaceNeeded) {
    RealArray source = make({1, 2, 3});
    source.reserve(100);
    RealArray const copy(source);
    EXPECT_EQ(copy.capacity(), 3u);
    EXPECT_TRUE(sameBits(elementsOf(copy), elementsOf(source)));
}

TEST(ElementArray, MovesItsStorage) {
    RealArray source = make({1, 2, 3});
    double const* const storage = source.data();
    AllocationCounter const counter;
    RealArray target(std::move(source));
    EXPECT_EQ(target.data(), storage);
    EXPECT_EQ(source.data(), nullptr);
    EXPECT_EQ(source.length(), 0u);
    EXPECT_EQ(source.capacity(), 0u);
    RealArray other(5);
    other = std::move(target);
    EXPECT_EQ(other.data(), storage);
    EXPECT_EQ(target.length(), 0u);
    EXPECT_EQ(counter.count(), 1u); // `other` itself
}

TEST(ElementArray, KeepsItsElementsWhenAssignedToItself) {
    RealArray a = make({1, 2, 3});
    RealArray& same = a;
    a = same;
    EXPECT_TRUE(sameBits(elementsOf(a), std::vector<double>{1, 2, 3}));
    a = std::move(same);
    EXPECT_TRUE(sameBits(elementsOf(a), std::vector<double>{1, 2, 3}));
}

TEST(ElementArray, ReusesItsStorageOnAssignmentWhenItSuffices) {
    RealArray target(10);
    double const* const storage = target.data();
    target = make({1, 2, 3});
    // A temporary is moved in; a named source is copied.
    RealArray const source = make({4, 5});
    RealArray large(10);
    double const* const largeStorage = large.data();
    large = source;
    EXPECT_EQ(large.data(), largeStorage);
    EXPECT_EQ(large.capacity(), 10u);
    EXPECT_TRUE(sameBits(elementsOf(large), elementsOf(source)));
    EXPECT_NE(target.data(), storage);
}

TEST(ElementArray, GrowsOnAssignmentByAtLeastOneHalf) {
    RealArray target(10);
    target = std::as_const(target);
    RealArray const eleven(11, 1.0);
    target = eleven;
    EXPECT_EQ(target.length(), 11u);
    EXPECT_EQ(target.capacity(), 15u);
    RealArray const hundred(100, 2.0);
    target = hundred;
    EXPECT_EQ(target.capacity(), 100u);
}

TEST(ElementArray, GrowsOnResizeByAtLeastOneHalf) {
    RealArray a(10);
    a.resize(11, 7.0);
    EXPECT_EQ(a.capacity(), 15u);
    a.resize(40, 8.0);
    EXPECT_EQ(a.capacity(), 40u);
    a.resize(3, 9.0);
    EXPECT_EQ(a.capacity(), 40u);
    EXPECT_EQ(a.length(), 3u);
    double const* const storage = a.data();
    a.resize(5, 9.0);
    EXPECT_EQ(a.data(), storage);
    EXPECT_TRUE(sameBits(elementsOf(a), std::vector<double>{0, 0, 0, 9, 9}));
}

TEST(ElementArray, TakesAnElementOfItsOwnAsFill) {
    RealArray a = make({1, 2, 3});
    a.resize(100, a[1]);
    EXPECT_EQ(a[99], 2.0);
}

TEST(ElementArray, ReservesExactly) {
    RealArray a = make({1, 2, 3});
    a.reserve(7);
    EXPECT_EQ(a.capacity(), 7u);
    EXPECT_TRUE(sameBits(elementsOf(a), std::vector<double>{1, 2, 3}));
    double const* const storage = a.data();
    a.reserve(2);
    EXPECT_EQ(a.data(), storage);
    EXPECT_EQ(a.capacity(), 7u);
}

TEST(ElementArray, RefusesLengthsBeyondTheLimitBeforeAllocating) {
    constexpr std::size_t tooLong = RealArray::maxLength + 1;
    EXPECT_EQ(lengthErrorOf([] { RealArray const a(tooLong); }), "vector too long");
    EXPECT_EQ(lengthErrorOf([] { RealArray const a(tooLong, 1.0); }), "vector too long");
    EXPECT_EQ(
        lengthErrorOf([] { RealArray const a(Uninitialised{}, std::numeric_limits<std::size_t>::max()); }),
        "vector too long");
    RealArray a = make({1, 2, 3});
    EXPECT_EQ(lengthErrorOf([&] { a.reserve(tooLong); }), "vector too long");
    EXPECT_EQ(lengthErrorOf([&] { a.resize(tooLong, 1.0); }), "vector too long");
    EXPECT_TRUE(sameBits(elementsOf(a), std::vector<double>{1, 2, 3}));
    EXPECT_EQ(lengthErrorOf([] { ComplexArray const z(ComplexArray::maxLength + 1); }), "vector too long");
}

TEST(ElementArray, ThrowsBadAllocUpToTheLimit) {
    EXPECT_THROW(RealArray(Uninitialised{}, RealArray::maxLength), std::bad_alloc);
    EXPECT_THROW(ComplexArray(Uninitialised{}, ComplexArray::maxLength), std::bad_alloc);
}

TEST(ElementArray, IsAsItWasAfterAFailedAllocation) {
    RealArray a = make({1, 2, 3});
    EXPECT_THROW(a.resize(RealArray::maxLength, 0.0), std::bad_alloc);
    EXPECT_THROW(a.reserve(RealArray::maxLength), std::bad_alloc);
    EXPECT_TRUE(sameBits(elementsOf(a), std::vector<double>{1, 2, 3}));
    EXPECT_EQ(a.capacity(), 3u);
    if (TestKit::FailingAllocations::areSupported()) {
        RealArray const source(1000, 1.0);
        TestKit::FailingAllocations const failing(1000);
        EXPECT_THROW(a = source, std::bad_alloc);
        EXPECT_TRUE(sameBits(elementsOf(a), std::vector<double>{1, 2, 3}));
    }
}

TEST(ElementArray, AlignsRealElements) {
    for (std::size_t n = 1; n < 100; ++n)
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(RealArray(n).data()) % 64, 0u);
}

TEST(ElementArray, HoldsComplexElements) {
    ComplexArray z(3, {1.0, -2.0});
    z.resize(5);
    EXPECT_EQ(z[2], std::complex<double>(1.0, -2.0));
    EXPECT_EQ(z[4], std::complex<double>(0.0, 0.0));
}

} // namespace

} // namespace Tervane::Math::Detail

#include "functions/Generations.h"
#include "kit/Bits.h"
#include "kit/Lengths.h"
#include "kit/SpecialValues.h"

#include <Math/Generators.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

namespace Tervane::Math {

namespace {

using namespace TestKit;

template<class Generation>
class Generators : public testing::Test {};

TYPED_TEST_SUITE(Generators, Generations, GenerationName);

std::vector<double> valuesOf(std::span<double const> elements) {
    return {elements.begin(), elements.end()};
}

} // namespace

TEST(GeneratorsZeros, BothGenerationsGiveColumnsOfPositiveZeros) {
    for (std::size_t const n : awkwardLengths()) {
        Vector2 current = zeros(n);
        Vector const legacy = zeros_old(n);
        EXPECT_TRUE(sameBits(elementsOf(current), std::vector(n, 0.0)));
        EXPECT_TRUE(sameBits(elementsOf(legacy), std::vector(n, 0.0)));
        EXPECT_EQ(current.orientation(), Column);
        EXPECT_EQ(legacy.orientation(), Column);
    }
}

TYPED_TEST(Generators, ArangeCountsFromStartToBeforeStop) {
    auto const elements = [](auto const& v) {
        return valuesOf(elementsOf(v));
    };
    EXPECT_EQ(elements(TypeParam::arange(3)), (std::vector{0.0, 1.0, 2.0}));
    EXPECT_EQ(elements(TypeParam::arange(-2, 1)), (std::vector{-2.0, -1.0, 0.0}));
    EXPECT_EQ(elements(TypeParam::arange(5, 2)), std::vector<double>{});
    EXPECT_EQ(elements(TypeParam::arange(-2)), std::vector<double>{});
    EXPECT_EQ(elements(TypeParam::arange(0)), std::vector<double>{});
    EXPECT_EQ(elements(TypeParam::arange(INT_MIN)), std::vector<double>{});
    EXPECT_EQ(elements(TypeParam::arange(4, 4)), std::vector<double>{});
    EXPECT_EQ(elements(TypeParam::arange(INT_MAX - 2, INT_MAX)), (std::vector{2147483645.0, 2147483646.0}));
    auto v = TypeParam::arange(2);
    EXPECT_EQ(TypeParam::orientationOf(v), Column);
}

TYPED_TEST(Generators, ArangeHasNoNegativeZero) {
    auto const v = TypeParam::arange(-1, 1);
    EXPECT_TRUE(sameBits(v[1], 0.0));
}

TYPED_TEST(Generators, ArangeFillsEveryLength) {
    for (std::size_t const n : awkwardLengths()) {
        std::vector<double> expected(n);
        for (std::size_t i = 0; i < n; ++i)
            expected[i] = -7.0 + static_cast<double>(i);
        auto const v = TypeParam::arange(-7, static_cast<int>(n) - 7);
        EXPECT_TRUE(sameBits(elementsOf(v), expected));
    }
}

TYPED_TEST(Generators, ArangeWrapsItsLengthAndItsValuesIn32Bits) {
    auto const wrapped = TypeParam::arange(INT_MAX - 1, INT_MIN + 2);
    EXPECT_TRUE(
        sameBits(elementsOf(wrapped), std::vector{2147483646.0, 2147483647.0, -2147483648.0, -2147483647.0}));
    // A distance of 2^31 is the smallest integer in 32 bits, and one of more than that is negative.
    EXPECT_EQ(TypeParam::arange(INT_MIN, 0).length(), 0U);
    EXPECT_EQ(TypeParam::arange(-1, INT_MAX).length(), 0U);
    EXPECT_EQ(TypeParam::arange(INT_MIN, INT_MAX).length(), 0U);
}

TYPED_TEST(Generators, LinspaceEndsExactlyAtStop) {
    auto const elements = [](auto const& v) {
        return valuesOf(elementsOf(v));
    };
    EXPECT_EQ(elements(TypeParam::linspace(0.0, 1.0, 5)), (std::vector{0.0, 0.25, 0.5, 0.75, 1.0}));
    EXPECT_EQ(elements(TypeParam::linspace(0.0, 1.0, 2)), (std::vector{0.0, 1.0}));
    EXPECT_EQ(elements(TypeParam::linspace(2.0, -2.0, 3)), (std::vector{2.0, 0.0, -2.0}));
    auto v = TypeParam::linspace(0.0, 1.0, 5);
    EXPECT_EQ(TypeParam::orientationOf(v), Column);
}

TYPED_TEST(Generators, LinspaceOfOnePointIsStop) {
    auto const v = TypeParam::linspace(3.0, 7.0, 1);
    ASSERT_EQ(v.length(), 1U);
    EXPECT_EQ(v[0], 7.0);
}

TYPED_TEST(Generators, LinspaceOfNoPointsIsEmpty) {
    EXPECT_EQ(TypeParam::linspace(3.0, 7.0, 0).length(), 0U);
}

TYPED_TEST(Generators, LinspaceIsARunningSum) {
    bool accumulationShows = false;
    for (std::size_t const n : awkwardLengths()) {
        if (n < 2)
            continue;
        for (auto const& [start, stop] : {std::pair{0.0, 1.0}, std::pair{-0.3, 17.1}, std::pair{5.0, 5.0}}) {
            std::vector<double> expected(n);
            expected[0] = start;
            expected[n - 1] = stop;
            double const step = (stop - start) / static_cast<double>(n - 1);
            for (std::size_t i = 1; i + 1 < n; ++i) {
                expected[i] = expected[i - 1] + step;
                accumulationShows |= expected[i] != start + static_cast<double>(i) * step;
            }
            auto const v = TypeParam::linspace(start, stop, n);
            EXPECT_TRUE(sameBits(elementsOf(v), expected)) << n;
        }
    }
    EXPECT_TRUE(accumulationShows) << "the values do not tell a running sum from multiples";
}

TYPED_TEST(Generators, TooManyPointsAreRefusedBeforeAnythingIsAllocated) {
    try {
        TypeParam::linspace(0.0, 1.0, std::size_t{1} << 61);
        FAIL() << "accepted";
    } catch (std::length_error const& error) {
        EXPECT_STREQ(error.what(), "vector too long");
    }
}

} // namespace Tervane::Math

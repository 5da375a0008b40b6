#include "kit/Allocations.h"
#include "kit/Bits.h"
#include "kit/Policies.h"

#include <Math/Random.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <vector>

namespace Tervane::Math {

namespace {

using namespace TestKit;

// The seeds are fresh, so a statistical test may fail by chance. Each bound below is a proven one and holds
// but for this probability; all together stay below one in a billion.
constexpr double falseAlarm = 1e-11;

/// By how much the mean of `n` independent numbers from an interval of length 1 may miss its expectation
/// (Hoeffding), and their empirical distribution the true one anywhere (Dvoretzky, Kiefer, Wolfowitz, with
/// Massart's constant).
double largestDeviation(std::size_t n, double probability = falseAlarm) {
    return std::sqrt(std::log(2.0 / probability) / (2.0 * static_cast<double>(n)));
}

constexpr std::size_t many = 1'000'000;

} // namespace

TEST(Random, TheDistributionIsUniform) {
    Vector2 values = Random::uniform(0.0, 1.0, many);
    std::sort(values.data(), values.data() + many);
    EXPECT_GE(values.front(), 0.0);
    EXPECT_LE(values.back(), 1.0);
    double distance = 0.0;
    for (std::size_t i = 0; i < many; ++i)
        distance = std::max({distance, std::abs(values[i] - static_cast<double>(i) / many),
                             std::abs(values[i] - static_cast<double>(i + 1) / many)});
    EXPECT_LT(distance, largestDeviation(many));
}

TEST(Random, MeanAndSpreadAreThoseOfTheRange) {
    Vector2 const values = Random::uniform(-3.0, 5.0, many);
    double mean = 0.0;
    double square = 0.0;
    for (std::size_t i = 0; i < many; ++i) {
        double const u = (values[i] + 3.0) / 8.0;
        mean += u / many;
        square += u * u / many;
    }
    EXPECT_NEAR(mean, 1.0 / 2.0, largestDeviation(many));
    EXPECT_NEAR(square, 1.0 / 3.0, largestDeviation(many));
}

TEST(Random, SuccessiveValuesAreIndependent) {
    // Disjoint pairs in 8 by 8 fields, each as likely as the other.
    constexpr std::size_t pairs = many / 2;
    constexpr std::size_t side = 8;
    Vector2 const values = Random::uniform(0.0, 1.0, 2 * pairs);
    std::array<double, side* side> share = {};
    for (std::size_t i = 0; i < pairs; ++i) {
        auto const field = [&](double u) {
            return std::min(static_cast<std::size_t>(u * static_cast<double>(side)), side - 1);
        };
        share[field(values[2 * i]) * side + field(values[2 * i + 1])] += 1.0 / pairs;
    }
    for (double const observed : share)
        EXPECT_NEAR(observed, 1.0 / share.size(),
                    largestDeviation(pairs, falseAlarm / static_cast<double>(share.size())));
}

TEST(Random, LowBitsAreAsOftenSetAsNot) {
    // The bit worth 2^-52 comes from the first output of a pair, that worth 1/2 from the second.
    Vector2 const values = Random::uniform(0.0, 1.0, many);
    for (double const weight : {0x1p1, 0x1p20, 0x1p40, 0x1p52}) {
        double set = 0.0;
        for (std::size_t i = 0; i < many; ++i)
            set += std::fmod(std::floor(values[i] * weight), 2.0) / many;
        // Values below 1/2 keep bits further down, and rounding at the last one is to even: both far below
        // the bound.
        EXPECT_NEAR(set, 0.5, largestDeviation(many) + 1e-4) << weight;
    }
}

TEST(Random, AMatrixIsUniformInEveryColumn) {
    constexpr std::size_t rows = 100'000;
    Matrix2 const m = Random::uniform(0.0, 1.0, rows, 4);
    ASSERT_EQ(m.rows(), rows);
    ASSERT_EQ(m.columns(), 4U);
    for (std::size_t c = 0; c < 4; ++c) {
        double mean = 0.0;
        for (std::size_t r = 0; r < rows; ++r)
            mean += m[Index(r, c)] / rows;
        EXPECT_NEAR(mean, 0.5, largestDeviation(rows)) << "column " << c;
    }
}

TEST(Random, EveryCallHasASeedOfItsOwn) {
    // Two seeds of 32 bits agree once in four billion times.
    Vector2 const first = Random::uniform(0.0, 1.0, 4);
    Vector2 const second = Random::uniform(0.0, 1.0, 4);
    EXPECT_FALSE(sameBits(elementsOf(first), elementsOf(second)));
}

TEST(Random, AVectorIsAColumnOfItsLength) {
    for (std::size_t const n : {std::size_t{1}, std::size_t{311}, std::size_t{313}, std::size_t{5000}}) {
        Vector2 values = Random::uniform(2.0, 3.0, n);
        EXPECT_EQ(values.length(), n);
        EXPECT_EQ(values.orientation(), Column);
        for (std::size_t i = 0; i < n; ++i)
            ASSERT_TRUE(values[i] >= 2.0 && values[i] <= 3.0) << values[i];
    }
}

TEST(Random, AnEmptyRangeGivesItsOneValue) {
    for (double const x : {0.0, -7.25, 1e300}) {
        Vector2 const values = Random::uniform(x, x, 400);
        EXPECT_TRUE(sameBits(elementsOf(values), std::vector(400, x)));
    }
}

TEST(Random, AReversedRangeIsTakenAsItIs) {
    Vector2 const values = Random::uniform(1.0, -1.0, 10'000);
    bool positive = false;
    bool negative = false;
    for (std::size_t i = 0; i < values.length(); ++i) {
        ASSERT_TRUE(values[i] >= -1.0 && values[i] <= 1.0) << values[i];
        positive |= values[i] > 0.5;
        negative |= values[i] < -0.5;
    }
    EXPECT_TRUE(positive && negative);
}

TEST(Random, NothingIsDrawnForNoElements) {
    EXPECT_EQ(Random::uniform(0.0, 1.0, 0).length(), 0U);
    Matrix2 const noRows = Random::uniform(0.0, 1.0, 0, 3);
    EXPECT_EQ(noRows.rows(), 0U);
    EXPECT_EQ(noRows.columns(), 3U);
    Matrix2 const noColumns = Random::uniform(0.0, 1.0, 3, 0);
    EXPECT_EQ(noColumns.rows(), 3U);
    EXPECT_EQ(noColumns.columns(), 0U);
}

TEST(Random, OnlyTheResultIsOnTheHeap) {
    Random::uniform(0.0, 1.0, 10'000); // what the first use of anything allocates
    AllocationCounter const counter;
    Vector2 const values = Random::uniform(0.0, 1.0, 10'000);
    std::size_t const bytes = counter.bytes();
    EXPECT_GE(bytes, 10'000 * sizeof(double));
    EXPECT_LT(bytes, 10'000 * sizeof(double) + 624) << "the generator is on the heap";
    EXPECT_EQ(values.length(), 10'000U);
}

TEST(Random, TooManyElementsAreRefused) {
    EXPECT_THROW(Random::uniform(0.0, 1.0, std::size_t{1} << 61), std::length_error);
    EXPECT_THROW(Random::uniform(0.0, 1.0, std::size_t{1} << 31, std::size_t{1} << 30), std::length_error);
}

} // namespace Tervane::Math

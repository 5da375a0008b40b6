#include "foundation/ElementwiseDispatch.h"
#include "functions/Generations.h"
#include "kit/Bits.h"
#include "kit/ErrorBounds.h"
#include "kit/Lengths.h"
#include "kit/Policies.h"
#include "kit/SpecialValues.h"

#include <Math/Reductions.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <span>
#include <string>
#include <vector>

namespace Tervane::Math {

namespace {

using namespace TestKit;

template<class Generation>
class Reductions : public testing::Test {};

TYPED_TEST_SUITE(Reductions, Generations, GenerationName);

constexpr std::size_t parallelLimit = Detail::parallelLimit(Detail::ElementCost::Streaming);

double sumInFourLanes(std::vector<double> const& x) {
    double total = 0.0;
    std::size_t const whole = x.size() - x.size() % 4;
    if (whole != 0) {
        double s[4] = {0.0, 0.0, 0.0, 0.0};
        for (std::size_t i = 0; i < whole; ++i)
            s[i % 4] += x[i];
        total = 0.0 + ((s[0] + s[2]) + (s[1] + s[3]));
    }
    for (std::size_t i = whole; i < x.size(); ++i)
        total += x[i];
    return total;
}

double sumFromTheLeft(std::vector<double> const& x) {
    double total = 0.0;
    for (double const value : x)
        total += value;
    return total;
}

double sumOfBlock(std::span<double const> x) {
    std::size_t const rounds = x.size() / 32, eights = x.size() / 8;
    double r[32] = {}, s[8];
    for (std::size_t i = 0; i < 32 * rounds; ++i)
        r[i % 32] += x[i];
    for (std::size_t k = 0; k < 8; ++k)
        s[k] = (r[k] + r[k + 8]) + (r[k + 16] + r[k + 24]);
    for (std::size_t i = 32 * rounds; i < 8 * eights; ++i)
        s[i % 8] += x[i];
    double total = ((s[0] + s[4]) + (s[2] + s[6])) + ((s[1] + s[5]) + (s[3] + s[7]));
    for (std::size_t i = 8 * eights; i < x.size(); ++i)
        total += x[i];
    return total;
}

double sumInBlocks(std::vector<double> const& x) {
    std::size_t length = 8'192;
    while ((x.size() + length - 1) / length > 256)
        length *= 2;
    std::vector<double> sums;
    for (std::size_t i = 0; i < x.size(); i += length)
        sums.push_back(sumOfBlock(std::span(x).subspan(i, std::min(length, x.size() - i))));
    while (sums.size() > 1) {
        std::vector<double> joined;
        for (std::size_t i = 0; i < sums.size(); i += 2)
            joined.push_back(i + 1 < sums.size() ? sums[i] + sums[i + 1] : sums[i]);
        sums = joined;
    }
    return sums.empty() ? 0.0 : sums[0];
}

} // namespace

TYPED_TEST(Reductions, SumHasTheSameBitsUnderBothParallelPolicies) {
    std::vector<std::size_t> lengths = awkwardLengthsAround(parallelLimit);
    for (std::size_t n = 0; n < 140; ++n)
        lengths.push_back(n);
    for (std::size_t const block : {std::size_t{8'192}, std::size_t{16 * 8'192}, std::size_t{256 * 8'192}})
        lengths.insert(lengths.end(), {block - 1, block, block + 1, block + 45});
    std::size_t ordersToldApart = 0;
    for (std::size_t const n : lengths) {
        SCOPED_TRACE("length " + std::to_string(n));
        std::vector<double> const values = ordinaryValues(n);
        double const expected = sumInBlocks(values);
        ordersToldApart += expected != sumInFourLanes(values) ? 1 : 0;
        auto const x = TypeParam::column(values);
        forEachPolicyOf(std::array{Parallel, ParallelUnsequenced},
                        [&] { EXPECT_TRUE(sameBits(sum(x), expected)); });
    }
    EXPECT_GT(ordersToldApart, lengths.size() / 4);
}

TYPED_TEST(Reductions, SumHasFourLanesUnderTheSerialPolicies) {
    for (std::size_t const n : awkwardLengthsAround(parallelLimit)) {
        SCOPED_TRACE("length " + std::to_string(n));
        std::vector<double> const values = ordinaryValues(n);
        double const expected = sumInFourLanes(values);
        if (n > 100) {
            EXPECT_NE(expected, sumFromTheLeft(values)) << "the values do not tell the orders apart";
        }
        auto const x = TypeParam::column(values);
        forEachPolicyOf(serialPolicies, [&] { EXPECT_TRUE(sameBits(sum(x), expected)); });
    }
}

TYPED_TEST(Reductions, SumOfUpToFiveElementsIsWrittenOut) {
    auto const x = [](std::vector<double> const& values) {
        return TypeParam::column(values);
    };
    // One unit is lost beside the large number, unless it meets another one first.
    double const large = 0x1p53;
    forEachPolicyOf(serialPolicies, [&] {
        EXPECT_TRUE(sameBits(sum(x({})), 0.0));
        EXPECT_TRUE(sameBits(sum(x({-0.0})), 0.0));
        EXPECT_EQ(sum(x({large, 1.0, 1.0})), large);
        EXPECT_EQ(sum(x({large, 1.0, -large, 1.0})), 2.0);
        EXPECT_EQ(sum(x({1.0, large, 1.0, -large})), 2.0);
        EXPECT_EQ(sum(x({1.0, 2.0, 3.0, 4.0, 5.0})), 15.0);
        EXPECT_EQ(sum(x({large, 0.0, 0.0, 0.0, 1.0, 1.0})), large);
    });
}

TYPED_TEST(Reductions, SumUnderTheParallelPoliciesIsWithinItsErrorBound) {
    for (std::size_t const n : {std::size_t{0}, std::size_t{1}, std::size_t{1000}, parallelLimit - 1,
                                parallelLimit, 8 * parallelLimit + 2}) {
        std::vector<double> const values = ordinaryValues(n, 7);
        long double exact = 0.0;
        long double magnitudes = 0.0;
        for (double const value : values) {
            exact += value;
            magnitudes += std::abs(value);
        }
        double const bound = static_cast<double>(static_cast<long double>(n) * unitRoundoff * magnitudes);
        auto const x = TypeParam::column(values);
        forEachPolicy([&] { EXPECT_TRUE(within(bound, sum(x), static_cast<double>(exact))) << n; });
    }
}

TYPED_TEST(Reductions, SumCarriesInfinitiesAndNaNs) {
    double const infinity = std::numeric_limits<double>::infinity();
    for (std::size_t const n : {std::size_t{5}, std::size_t{70}, parallelLimit + 3})
        forEachPolicy([&] {
            std::vector<double> values(n, 1.0);
            values[n / 2] = infinity;
            EXPECT_EQ(sum(TypeParam::column(values)), infinity);
            values[n - 1] = -infinity;
            EXPECT_TRUE(isNaN(sum(TypeParam::column(values))));
        });
}

TYPED_TEST(Reductions, MeanAddsFromTheLeftUnderEveryPolicy) {
    for (std::size_t const n : awkwardLengthsAround(parallelLimit)) {
        if (n == 0)
            continue;
        SCOPED_TRACE("length " + std::to_string(n));
        std::vector<double> const values = ordinaryValues(n, 3);
        double const expected = sumFromTheLeft(values) / static_cast<double>(n);
        auto const x = TypeParam::column(values);
        forEachPolicy([&] { EXPECT_TRUE(sameBits(mean(x), expected)); });
    }
}

TYPED_TEST(Reductions, MeanMayDifferFromSumOverLength) {
    double const large = 0x1p53;
    auto const x = TypeParam::column(std::vector{large, 1.0, -large, 1.0});
    PolicyScope const scope(Inline);
    EXPECT_EQ(mean(x), 0.25);
    EXPECT_EQ(sum(x) / static_cast<double>(len(x)), 0.5);
}

TYPED_TEST(Reductions, MeanOfNothingIsNaN) {
    EXPECT_TRUE(isNaN(mean(TypeParam::column({}))));
}

TYPED_TEST(Reductions, MaxIsWhatTheStandardSearchFinds) {
    for (std::size_t const n : awkwardLengthsAround(parallelLimit)) {
        if (n == 0)
            continue;
        SCOPED_TRACE("length " + std::to_string(n));
        for (std::vector<double> const& values :
             {ordinaryValues(n), valuesByBitPattern(n), specialValues(n, n % 41), specialValues(n, n % 40)}) {
            auto const x = TypeParam::column(values);
            double const expected = *std::max_element(values.begin(), values.end());
            forEachPolicy([&] { EXPECT_TRUE(sameBits(max(x), expected)); });
        }
    }
}

TYPED_TEST(Reductions, MaxFindsTheLargestElementAtEveryPlace) {
    for (std::size_t const n : awkwardLengths())
        for (std::size_t i = 0; i < n; ++i) {
            std::vector<double> values(n, -3.0);
            values[i] = -2.5;
            ASSERT_TRUE(sameBits(max(TypeParam::column(values)), -2.5)) << i << " of " << n;
        }
}

TYPED_TEST(Reductions, MaxOfEqualZerosHasTheSignOfTheFirst) {
    for (std::size_t const n : awkwardLengths())
        for (std::size_t i = 0; i + 1 < n; ++i)
            for (double const first : {0.0, -0.0}) {
                std::vector<double> values(n, -1.0);
                values[i] = first;
                for (std::size_t later = i + 1; later < n; ++later)
                    values[later] = -first;
                ASSERT_TRUE(sameBits(max(TypeParam::column(values)), first)) << i << " of " << n;
            }
}

TYPED_TEST(Reductions, MaxKeepsANaNInFrontAndPassesOverAnyOther) {
    double const nan = fromBits(0xfff8000000000abc);
    for (std::size_t const n : awkwardLengths()) {
        if (n == 0)
            continue;
        std::vector<double> values = ordinaryValues(n);
        values[0] = nan;
        EXPECT_TRUE(sameBits(max(TypeParam::column(values)), nan)) << n;
        for (std::size_t i = 1; i < n; ++i) {
            std::vector<double> others(n, nan);
            others[0] = -5.0;
            others[i] = -4.0;
            ASSERT_TRUE(sameBits(max(TypeParam::column(others)), -4.0)) << i << " of " << n;
        }
    }
    double const infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(max(TypeParam::column(std::vector(40, -infinity))), -infinity);
}

TYPED_TEST(Reductions, MaxOfNothingIsAQuietNaN) {
    EXPECT_TRUE(sameBits(max(TypeParam::column({})), std::numeric_limits<double>::quiet_NaN()));
}

TYPED_TEST(Reductions, LenIsTheLength) {
    EXPECT_EQ(len(TypeParam::column({})), 0U);
    EXPECT_EQ(len(TypeParam::row(std::vector(7, 1.0))), 7U);
}

TEST(ReductionsVectorView2, LenIsTheLength) {
    double const values[] = {1.0, 2.0, 3.0};
    EXPECT_EQ(len(VectorView2(values, 3, Row)), 3U);
    EXPECT_EQ(len(VectorView2()), 0U);
}

} // namespace Tervane::Math

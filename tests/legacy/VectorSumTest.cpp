#include "legacy/VectorSum.h"

#include "kit/Allocations.h"
#include "kit/Bits.h"
#include "kit/Lengths.h"
#include "kit/Policies.h"
#include "kit/SpecialValues.h"
#include "legacy/Tables.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

namespace Tervane::Math::LegacyTest {

namespace {

using ::operator+;
using ::operator-;
using TestKit::elementsOf;
using TestKit::sameBits;

TEST(VectorSum, OfTwoNamedVectorsIsACopyOfTheLeftWithTheRightAddedOrSubtracted) {
    for (std::size_t const n : TestKit::awkwardLengths()) {
        SCOPED_TRACE(n);
        std::vector<double> const x = TestKit::specialValues(n);
        std::vector<double> const y = TestKit::ordinaryValues(n);
        std::vector<double> sum(n);
        std::vector<double> difference(n);
        for (std::size_t i = 0; i < n; ++i) {
            sum[i] = x[i] + y[i];
            difference[i] = x[i] - y[i];
        }
        Vector const a = rowOf(x);
        Vector const b(y);
        TestKit::forEachPolicy([&] {
            Vector const plus = a + b;
            Vector const minus = a - b;
            EXPECT_TRUE(sameBits(elementsOf(plus), sum));
            EXPECT_TRUE(sameBits(elementsOf(minus), difference));
            EXPECT_EQ(plus.orientation(), Row);
            EXPECT_EQ(minus.orientation(), Row);
        });
        EXPECT_TRUE(sameBits(elementsOf(a), x));
        EXPECT_TRUE(sameBits(elementsOf(b), y));
    }
}

TEST(VectorSum, OfThreeNamedVectorsAllocatesOneCopy) {
    Vector const a(100, 1.0);
    std::size_t single = 0;
    {
        TestKit::AllocationCounter const counter;
        Vector const copy(a);
        single = counter.count();
    }
    TestKit::AllocationCounter const counter;
    Vector const sum = a + a + a;
    EXPECT_EQ(counter.count(), single);
    EXPECT_EQ(sum[99], 3.0);
}

TEST(VectorSum, WalksTheLeftOperand) {
    Vector const a{1.0};
    Vector const b{10.0, 20.0};
    EXPECT_EQ((a + b).length(), 1U);
    EXPECT_EQ((a - b)[0], -9.0);
}

} // namespace

} // namespace Tervane::Math::LegacyTest

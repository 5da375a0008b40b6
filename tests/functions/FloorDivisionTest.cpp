#include "kit/Bits.h"
#include "kit/ErrorBounds.h"
#include "kit/SpecialValues.h"

#include <Math/FloorDivision.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>

namespace Tervane::Math {

namespace {

using namespace TestKit;

double const infinity = std::numeric_limits<double>::infinity();

} // namespace

TEST(FloorDivision, RoundsTowardMinusInfinity) {
    EXPECT_EQ(floordiv(7.0, 2.0), 3.0);
    EXPECT_EQ(floordiv(-7.0, 2.0), -4.0);
    EXPECT_EQ(floordiv(7.0, -2.0), -4.0);
    EXPECT_TRUE(sameBits(floordiv(-0.0, 2.0), -0.0));
}

TEST(FloorDivision, IsTheFloorOfTheRoundedQuotient) {
    for (double const a : specialValues())
        for (double const b : specialValues())
            EXPECT_TRUE(sameBits(floordiv(a, b), std::floor(a / b))) << a << " by " << b;
}

TEST(FloorDivision, DividesByZeroWithoutAWord) {
    EXPECT_EQ(floordiv(1.0, 0.0), infinity);
    EXPECT_EQ(floordiv(1.0, -0.0), -infinity);
    EXPECT_TRUE(isNaN(floordiv(0.0, 0.0)));
    EXPECT_EQ(floordiv(std::size_t{3}, 0.0), infinity);
    EXPECT_TRUE(isNaN(floordiv(std::size_t{0}, 0.0)));
}

TEST(FloorDivision, ConvertsALengthAsAnUnsignedNumber) {
    EXPECT_EQ(floordiv(std::size_t{7}, 2.0), 3.0);
    EXPECT_EQ(floordiv(std::numeric_limits<std::size_t>::max(), 1.0), 0x1p64);
    EXPECT_EQ(floordiv((std::size_t{1} << 63) + 1, 0x1p62), 2.0);
}

namespace {

template<class T>
concept Divides = requires(T a) {
    floordiv(a, 2.0);
};

static_assert(Divides<double> && Divides<std::size_t>);
static_assert(!Divides<int> && !Divides<long>, "which of the two would be meant?");

} // namespace

} // namespace Tervane::Math

#include "kit/Lengths.h"
#include "kit/SpecialValues.h"

#include <Math/Vector.h>

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace Tervane::Math {

namespace {

using namespace TestKit;

} // namespace

TEST(VectorComparison, EveryElementHasItsFlag) {
    for (std::size_t const n : awkwardLengths())
        for (double const t : specialValues()) {
            std::vector<double> const values = specialValues(n, 5);
            Vector x(values.data(), n);
            std::vector<bool> const below = x < t;
            std::vector<bool> const above = x > t;
            ASSERT_EQ(below.size(), n);
            ASSERT_EQ(above.size(), n);
            for (std::size_t i = 0; i < n; ++i) {
                ASSERT_EQ(below[i], values[i] < t) << values[i] << " and " << t;
                ASSERT_EQ(above[i], values[i] > t) << values[i] << " and " << t;
            }
        }
}

TEST(VectorComparison, NeitherANaNNorAnEqualElementIsBelowOrAbove) {
    double const nan = std::numeric_limits<double>::quiet_NaN();
    Vector x{nan, 1.0, -0.0};
    EXPECT_EQ(x < 1.0, (std::vector{false, false, true}));
    EXPECT_EQ(x > 0.0, (std::vector{false, true, false}));
    EXPECT_EQ(x < nan, (std::vector{false, false, false}));
    EXPECT_EQ(x > nan, (std::vector{false, false, false}));
}

namespace {

template<class V>
concept ComparesWithAThreshold = requires(V& x, double t) {
    x < t;
    x > t;
};

static_assert(ComparesWithAThreshold<Vector>);
static_assert(!ComparesWithAThreshold<Vector const>, "the operators are not for constant vectors");

} // namespace

} // namespace Tervane::Math

#include "legacy/Tables.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

namespace Tervane::Math::LegacyTest {

namespace {

using Calls = std::vector<std::string>;

TEST(AbstractVector, IsAbstractAndCopiesWithoutState) {
    static_assert(std::is_abstract_v<AbstractVector>);
    OwnVector target(1, 1, {1});
    OwnVector const source(1, 1, {2});
    AbstractVector& base = target;
    EXPECT_EQ(&(base = source), &base);
    EXPECT_EQ(target.value(0), 1.0);
}

TEST(AbstractVector, DefaultOrientationIsAColumnUnlessThereAreMoreColumns) {
    EXPECT_EQ(OwnVector(1, 1, {1}).orientation(), Column);
    EXPECT_EQ(OwnVector(0, 0, {}).orientation(), Column);
    EXPECT_EQ(OwnVector(1, 4, {1, 2, 3, 4}).orientation(), Row);
    EXPECT_EQ(OwnVector(4, 1, {1, 2, 3, 4}).orientation(), Column);
    EXPECT_EQ(OwnVector(0, 1, {}).orientation(), Row);
    EXPECT_EQ(OwnVector(1, 0, {}).orientation(), Column);
    EXPECT_EQ(static_cast<int>(OwnVector(1, 1, {1}).orientation()), 1);
    EXPECT_EQ(static_cast<int>(OwnVector(1, 4, {1, 2, 3, 4}).orientation()), 0);
}

TEST(AbstractVector, DefaultLengthIsTheLargerDimension) {
    EXPECT_EQ(OwnVector(3, 1, {1, 2, 3}).length(), 3U);
    EXPECT_EQ(OwnVector(1, 3, {1, 2, 3}).length(), 3U);
    EXPECT_EQ(OwnVector(0, 0, {}).length(), 0U);
    EXPECT_EQ(OwnVector(0, 1, {}).length(), 1U) << "an empty vector has length 1 by default";
}

TEST(AbstractVector, DefaultAccessReadsTheFirstColumnOrTheFirstRow) {
    OwnVector const column(4, 1, {1, 2, 3, 4});
    OwnVector const row(1, 4, {1, 2, 3, 4});
    for (OwnVector const* v : {&column, &row}) {
        std::string const last = v == &column ? "element 2,0" : "element 0,2";
        EXPECT_EQ((*v)[2], 3.0);
        EXPECT_EQ(v->takeCalls().back(), last);
        EXPECT_EQ(v->value(2), 3.0);
        EXPECT_EQ(v->takeCalls().back(), last);
        EXPECT_EQ(&v->value(3), &(*v)[3]);
        v->takeCalls();
    }
}

class Stubborn : public OwnVector {
public:
    using OwnVector::OwnVector;
    using OwnVector::operator[];

    // Says the opposite of its shape.
    VectorOrientation orientation() const override { return Row; }
    Dimensions size() const override { return Dimensions(2, 7); }
};

TEST(AbstractVector, DefaultsAskThroughTheSlots) {
    Stubborn const v(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
    EXPECT_EQ(v[1], 2.0) << "row 0, column 1, as the overridden orientation says";
    EXPECT_EQ(v.length(), 7U) << "from the overridden size";
}

class Numbered : public OwnVector {
public:
    using OwnVector::OwnVector;
    using OwnVector::operator[];
    double const& operator[](std::size_t) const override { return answer; }

    double answer = 42.0;
};

TEST(AbstractVector, ValueForwardsToTheAccessByNumber) {
    Numbered const v(1, 1, {1});
    EXPECT_EQ(&v.value(99), &v.answer);
}

} // namespace

} // namespace Tervane::Math::LegacyTest

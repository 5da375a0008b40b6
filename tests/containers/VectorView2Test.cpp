#include "kit/Bits.h"

#include <Math/Matrix2.h>
#include <Math/Vector2.h>
#include <Math/VectorView2.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tervane::Math {

namespace {

using namespace TestKit;

static_assert(sizeof(VectorView2) == 24 && std::is_trivially_copyable_v<VectorView2>);

template<class V>
concept HasOrientation = requires(V& v) {
    v.orientation();
};
template<class V>
concept HasSize = requires(V& v) {
    v.size();
};
template<class V>
concept CanBeSliced = requires(V& v) {
    v.sliced(0, 0);
};
static_assert(HasOrientation<VectorView2> && !HasOrientation<VectorView2 const>);
static_assert(HasSize<VectorView2> && !HasSize<VectorView2 const>);
static_assert(CanBeSliced<VectorView2> && !CanBeSliced<VectorView2 const>);
static_assert(std::is_same_v<decltype(std::declval<VectorView2&>().data()), double const*>);
static_assert(!std::is_assignable_v<decltype(std::declval<VectorView2&>()[0]), double>);
static_assert(!std::is_constructible_v<VectorView2, Vector2 const&>);

TEST(VectorView2, LooksAtNothingByDefault) {
    VectorView2 view;
    EXPECT_EQ(view.data(), nullptr);
    EXPECT_EQ(view.length(), 0u);
    EXPECT_EQ(view.orientation(), Column);
    EXPECT_EQ(view.size(), Dimensions(0, 1));
}

TEST(VectorView2, KeepsWhatItIsGiven) {
    double const values[] = {1, 2, 3};
    VectorView2 row(values, 3, Row);
    EXPECT_EQ(row.data(), values);
    EXPECT_EQ(&row[2], values + 2);
    EXPECT_EQ(row.size(), Dimensions(1, 3));
    VectorView2 column(values, 2, Column);
    EXPECT_EQ(column.size(), Dimensions(2, 1));
    EXPECT_EQ(VectorView2(values, 3, static_cast<VectorOrientation>(5)).size(), Dimensions(3, 1));
}

TEST(VectorView2, CopiesTheLookAndNotTheElements) {
    double const values[] = {1, 2, 3};
    VectorView2 source(values, 3, Row);
    VectorView2 copy(source);
    VectorView2 assigned;
    assigned = source;
    VectorView2 moved(std::move(source));
    for (VectorView2* const view : {&copy, &assigned, &moved, &source}) {
        EXPECT_EQ(view->data(), values);
        EXPECT_EQ(view->length(), 3u);
        EXPECT_EQ(view->orientation(), Row);
    }
}

TEST(VectorView2, LooksAtOneColumnOfAMatrix) {
    Matrix2 m(3, 2, 0.0);
    for (std::size_t k = 0; k < 6; ++k)
        m.data()[k] = static_cast<double>(k);
    VectorView2 view(m, 1);
    EXPECT_EQ(view.data(), m.data() + 3);
    EXPECT_EQ(view.length(), 3u);
    EXPECT_EQ(view.orientation(), Column);
    EXPECT_TRUE(sameBits(elementsOf(view), std::vector<double>{3, 4, 5}));
    m[Index(2, 1)] = 9.0;
    EXPECT_EQ(view[2], 9.0);
}

TEST(VectorView2, SlicesByOffsetAndLengthKeepingTheOrientation) {
    std::vector<double> const values = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    VectorView2 view(values.data(), 10, Row);
    VectorView2 slice = view.sliced(2, 3);
    EXPECT_TRUE(sameBits(elementsOf(slice), std::vector<double>{2, 3, 4}));
    EXPECT_EQ(slice.orientation(), Row);
    EXPECT_EQ(view.sliced(10, 0).length(), 0u);
}

} // namespace

} // namespace Tervane::Math

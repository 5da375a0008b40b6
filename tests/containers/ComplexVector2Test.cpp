#include "kit/Allocations.h"
#include "kit/Bits.h"
#include "kit/LengthErrors.h"
#include "kit/SpecialValues.h"

#include <Math/ComplexVector2.h>
#include <Math/ComplexVectorView2.h>
#include <Math/Errors.h>
#include <Math/Vector2.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <new>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tervane::Math {

namespace {

using namespace TestKit;
using Values = std::vector<double>;

static_assert(sizeof(ComplexVector2) == 32 && sizeof(ComplexVectorView2) == 24);
static_assert(std::is_nothrow_move_constructible_v<
                  ComplexVector2> && std::is_nothrow_move_assignable_v<ComplexVector2>);
static_assert(std::is_trivially_copyable_v<ComplexVectorView2>);
static_assert(!std::is_convertible_v<std::size_t, ComplexVector2>);

template<class Z>
concept HasView = requires(Z& z) {
    z.view();
};
template<class Z>
concept HasText = requires(Z& z) {
    z.toString();
};
template<class Z>
concept HasShape = requires(Z& z) {
    z.size();
};
template<class Z>
concept HasOrientation = requires(Z& z) {
    z.orientation();
};
template<class Z>
concept CanBeSliced = requires(Z& z) {
    z.sliced(0, 0);
};
static_assert(HasView<ComplexVector2> && !HasView<ComplexVector2 const>);
static_assert(HasText<ComplexVector2> && !HasText<ComplexVector2 const>);
static_assert(HasShape<ComplexVector2> && !HasShape<ComplexVector2 const>);
static_assert(HasOrientation<ComplexVector2> && !HasOrientation<ComplexVector2 const>);
static_assert(HasOrientation<ComplexVectorView2> && !HasOrientation<ComplexVectorView2 const>);
static_assert(CanBeSliced<ComplexVectorView2> && !CanBeSliced<ComplexVectorView2 const>);

ComplexVector2 make(Values const& parts) {
    return ComplexVector2::fromData(parts.data(), parts.size()).value();
}

std::string textOf(ComplexVector2 z) {
    return z.toString().value().narrow();
}

TEST(ComplexVector2, IsAnEmptyColumnByDefault) {
    ComplexVector2 z;
    EXPECT_EQ(z.length(), 0u);
    EXPECT_EQ(z.size(), Dimensions(0, 1));
    EXPECT_EQ(z.orientation(), Column);
    EXPECT_EQ(z.data(), nullptr);
}

TEST(ComplexVector2, IsMadeOfZeros) {
    ComplexVector2 z(2);
    EXPECT_EQ(z.length(), 2u);
    EXPECT_EQ(z.size(), Dimensions(2, 1));
    EXPECT_TRUE(sameBits(partsOf(z), Values(4, 0.0)));
}

TEST(ComplexVector2, IsMadeOfInterleavedPairs) {
    for (std::size_t n = 0; n < 40; n += 2) {
        Values const parts = specialValues(n);
        auto z = ComplexVector2::fromData(parts.data(), n);
        ASSERT_TRUE(z.has_value());
        EXPECT_EQ(z->length(), n / 2);
        EXPECT_EQ(z->orientation(), Column);
        EXPECT_TRUE(sameBits(partsOf(*z), parts));
    }
    EXPECT_EQ(ComplexVector2::fromData(nullptr, 0)->length(), 0u);
}

TEST(ComplexVector2, RefusesAnOddNumberOfParts) {
    double const parts[] = {1, 2, 3};
    for (std::size_t const count : {1ul, 3ul}) {
        auto const z = ComplexVector2::fromData(parts, count);
        ASSERT_FALSE(z.has_value());
        EXPECT_TRUE(z.error() == System::ErrorCode2(OddComplexDataLength));
        EXPECT_EQ(z.error().message().narrow(), "complex vector from data cannot have odd length");
    }
}

TEST(ComplexVector2, ReportsAnAllocationThatFailsAsTheUnspecificError) {
    double const parts[] = {1, 2};
    auto const z = ComplexVector2::fromData(parts, std::size_t{1} << 63);
    ASSERT_FALSE(z.has_value());
    EXPECT_TRUE(z.error() == System::ErrorCode2(-1, System::system_error_category()));
}

TEST(ComplexVector2, RefusesLengthsBeyondTheLimit) {
    EXPECT_EQ(lengthErrorOf([] { ComplexVector2 const z(std::size_t{1} << 60); }), "vector too long");
    EXPECT_THROW(ComplexVector2((std::size_t{1} << 60) - 1), std::bad_alloc);
}

TEST(ComplexVector2, MovesItsStorageAndLeavesTheSourceEmpty) {
    ComplexVector2 source = make({1, 2, 3, 4});
    double const* const storage = source.data();
    ComplexVector2 target(std::move(source));
    EXPECT_EQ(target.data(), storage);
    EXPECT_EQ(source.length(), 0u);
    EXPECT_EQ(source.data(), nullptr);
    ComplexVector2 assigned(5);
    assigned = std::move(target);
    EXPECT_EQ(assigned.data(), storage);
    EXPECT_EQ(target.length(), 0u);
    ComplexVector2& same = assigned;
    assigned = std::move(same);
    EXPECT_EQ(assigned.data(), storage);
}

TEST(ComplexVector2, AssignsIntoItsOwnStorageWhenItSuffices) {
    ComplexVector2 target(10);
    double const* const storage = target.data();
    ComplexVector2 const source = make({1, 2, 3, 4});
    target = source;
    EXPECT_EQ(target.data(), storage);
    EXPECT_TRUE(sameBits(partsOf(target), Values{1, 2, 3, 4}));
    ComplexVector2 const copy(source);
    EXPECT_NE(copy.data(), source.data());
    EXPECT_TRUE(sameBits(partsOf(copy), partsOf(source)));
}

TEST(ComplexVector2Text, ShowsPairs) {
    EXPECT_EQ(textOf(make({1, 2, 0.5, -3})), "[ (1,2), (0.5,-3) ]");
    EXPECT_EQ(textOf(ComplexVector2()), "[  ]");
    EXPECT_EQ(textOf(make({1.0 / 3.0, 1e-10})), "[ (0.333333,1e-10) ]");
}

TEST(ComplexVectorView2, LooksAtNothingByDefault) {
    ComplexVectorView2 view;
    EXPECT_EQ(view.data(), nullptr);
    EXPECT_EQ(view.length(), 0u);
    EXPECT_EQ(view.orientation(), Column);
}

TEST(ComplexVectorView2, LooksAtAWholeVector) {
    ComplexVector2 z = make({1, 2, 3, 4});
    ComplexVectorView2 view = z.view();
    EXPECT_EQ(view.data(), z.data());
    EXPECT_EQ(view.length(), 2u);
    EXPECT_EQ(view.orientation(), Column);
}

TEST(ComplexVectorView2, SlicesByStartAndLength) {
    ComplexVector2 z = make({1, 2, 3, 4, 5, 6, 7, 8});
    ComplexVectorView2 slice = z.view().sliced(1, 2);
    EXPECT_EQ(slice.data(), z.data() + 2);
    EXPECT_EQ(slice.length(), 2u);
}

TEST(ComplexVectorView2, SlicesTheRestForTheLargestLength) {
    ComplexVector2 z(4);
    constexpr std::size_t rest = std::numeric_limits<std::size_t>::max();
    EXPECT_EQ(z.view().sliced(1, rest).length(), 3u);
    EXPECT_EQ(z.view().sliced(4, rest).length(), 0u);
    EXPECT_EQ(z.view().sliced(0, rest).data(), z.data());
}

} // namespace

} // namespace Tervane::Math

#include "kit/Allocations.h"
#include "kit/Bits.h"
#include "kit/LengthErrors.h"
#include "kit/Lengths.h"
#include "kit/Policies.h"
#include "kit/SliceReference.h"
#include "kit/SpecialValues.h"

#include <Math/Vector2.h>
#include <Math/VectorView2.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
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

static_assert(sizeof(Vector2) == 32 && !std::is_polymorphic_v<Vector2>);
static_assert(std::is_nothrow_move_constructible_v<Vector2> && std::is_nothrow_move_assignable_v<Vector2>);
static_assert(!std::is_convertible_v<std::size_t, Vector2> && std::is_constructible_v<Vector2, std::size_t>);
static_assert(
    !std::is_convertible_v<VectorView2, Vector2> && std::is_constructible_v<Vector2, VectorView2 const&>);

// Which operations a constant vector offers is part of the interface.
template<class V>
concept HasOrientation = requires(V& v) {
    v.orientation();
};
template<class V>
concept HasSize = requires(V& v) {
    v.size();
};
template<class V>
concept HasText = requires(V& v) {
    v.toString();
};
static_assert(HasOrientation<Vector2> && !HasOrientation<Vector2 const>);
static_assert(HasSize<Vector2> && !HasSize<Vector2 const>);
static_assert(HasText<Vector2> && !HasText<Vector2 const>);
static_assert(std::is_same_v<decltype(std::declval<Vector2 const&>()[0ul]), double const&>);
static_assert(std::is_same_v<decltype(std::declval<Vector2&>()[0ul]), double&>);
static_assert(std::is_same_v<decltype(std::declval<Vector2 const&>().data()), double const*>);

Vector2 make(std::vector<double> const& values) {
    return Vector2(values.data(), values.size());
}

Vector2 makeRow(std::vector<double> const& values) {
    return Vector2(VectorView2(values.data(), values.size(), Row));
}

std::string textOf(Vector2 v) {
    return v.toString().value().narrow();
}

constexpr std::size_t tooLong = std::size_t{1} << 61;

TEST(Vector2, IsAnEmptyColumnByDefault) {
    AllocationCounter const counter;
    Vector2 v;
    EXPECT_EQ(v.length(), 0u);
    EXPECT_EQ(v.rows(), 0u);
    EXPECT_EQ(v.columns(), 1u);
    EXPECT_EQ(v.size(), Dimensions(0, 1));
    EXPECT_EQ(v.orientation(), Column);
    EXPECT_EQ(v.data(), nullptr);
    EXPECT_EQ(counter.count(), 0u);
}

TEST(Vector2, IsMadeOfZerosOrOfAValue) {
    for (std::size_t const n : awkwardLengths()) {
        Vector2 zeros(n);
        EXPECT_TRUE(sameBits(elementsOf(zeros), std::vector<double>(n, 0.0)));
        EXPECT_EQ(zeros.orientation(), Column);
    }
    forEachPolicy([] {
        for (std::size_t const n : awkwardLengthsAround(32'768))
            EXPECT_TRUE(sameBits(elementsOf(Vector2(n, -2.5)), std::vector<double>(n, -2.5)));
        for (double const x : specialValues())
            EXPECT_TRUE(sameBits(elementsOf(Vector2(9, x)), std::vector<double>(9, x)));
    });
}

TEST(Vector2, AlignsItsElements) {
    for (std::size_t n = 1; n < 70; ++n)
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(Vector2(n).data()) % 64, 0u);
}

TEST(Vector2, CopiesWhatAPointerOrAViewShows) {
    std::vector<double> const values = specialValues();
    EXPECT_TRUE(sameBits(elementsOf(make(values)), values));
    Vector2 row(VectorView2(values.data(), 3, Row));
    EXPECT_EQ(row.orientation(), Row);
    EXPECT_EQ(row.rows(), 1u);
    EXPECT_EQ(row.columns(), 3u);
    EXPECT_EQ(row.size(), Dimensions(1, 3));
    EXPECT_NE(row.data(), values.data());
    Vector2 column(VectorView2(values.data(), 3, Column));
    EXPECT_EQ(column.size(), Dimensions(3, 1));
}

TEST(Vector2, HasTheShapeOfAColumnUnlessItIsARow) {
    double const values[] = {1, 2, 3};
    Vector2 odd(VectorView2(values, 3, static_cast<VectorOrientation>(7)));
    EXPECT_EQ(odd.rows(), 1u);
    EXPECT_EQ(odd.columns(), 1u);
    EXPECT_EQ(odd.size(), Dimensions(3, 1));
    EXPECT_EQ(odd.orientation(), static_cast<VectorOrientation>(7));
}

TEST(Vector2, CopiesExactlyAndKeepsTheOrientation) {
    Vector2 source = makeRow({1, 2, 3});
    source.reserve(1000);
    AllocationCounter const counter;
    Vector2 copy(source);
    EXPECT_LT(counter.bytes(), 1000u); // not the source's capacity
    EXPECT_EQ(copy.orientation(), Row);
    EXPECT_TRUE(sameBits(elementsOf(copy), elementsOf(source)));
}

TEST(Vector2, MovesItsStorageAndLeavesTheSourceEmptyWithItsOrientation) {
    Vector2 source = makeRow({1, 2, 3});
    double const* const storage = source.data();
    AllocationCounter const counter;
    Vector2 target(std::move(source));
    EXPECT_EQ(target.data(), storage);
    EXPECT_EQ(target.orientation(), Row);
    EXPECT_EQ(source.length(), 0u);
    EXPECT_EQ(source.data(), nullptr);
    EXPECT_EQ(source.orientation(), Row);
    Vector2 assigned;
    assigned = std::move(target);
    EXPECT_EQ(assigned.data(), storage);
    EXPECT_EQ(assigned.orientation(), Row);
    EXPECT_EQ(target.length(), 0u);
    EXPECT_EQ(counter.count(), 0u);
}

TEST(Vector2, KeepsItsElementsWhenMoveAssignedToItself) {
    Vector2 v = makeRow({1, 2, 3});
    Vector2& same = v;
    v = std::move(same);
    EXPECT_TRUE(sameBits(elementsOf(v), std::vector<double>{1, 2, 3}));
    EXPECT_EQ(v.orientation(), Row);
    v = same;
    EXPECT_TRUE(sameBits(elementsOf(v), std::vector<double>{1, 2, 3}));
}

TEST(Vector2, AssignsIntoItsOwnStorageWhenItSuffices) {
    Vector2 target(10, 7.0);
    double const* const storage = target.data();
    Vector2 const source = makeRow({1, 2});
    target = source;
    EXPECT_EQ(target.data(), storage);
    EXPECT_EQ(target.length(), 2u);
    EXPECT_EQ(target.orientation(), Row);
    // What grew by one half takes fifteen elements without another allocation.
    Vector2 growing(10);
    Vector2 const eleven(11, 1.0), fifteen(15, 2.0);
    growing = eleven;
    double const* const grown = growing.data();
    growing = fifteen;
    EXPECT_EQ(growing.data(), grown);
}

TEST(Vector2, GivesReferencesToItsElements) {
    Vector2 v = make({1, 2, 3});
    v[1] = 5;
    v.front() = 4;
    v.back() = 6;
    Vector2 const& constant = v;
    EXPECT_EQ(constant[1], 5);
    EXPECT_EQ(&constant.front(), constant.data());
    EXPECT_EQ(&constant.back(), constant.data() + 2);
    EXPECT_TRUE(sameBits(elementsOf(v), std::vector<double>{4, 5, 6}));
}

TEST(Vector2Slice, AgreesWithTheRulesOnAnExhaustiveGrid) {
    std::vector<double> const values = ordinaryValues(10);
    std::size_t const compared = forEachSlice(10, [&](int start, int stop, int step, std::size_t n,
                                                      std::vector<long> const& positions) {
        std::vector<double> expected;
        for (long const p : positions)
            expected.push_back(values[static_cast<std::size_t>(p)]);
        ASSERT_TRUE(sameBits(elementsOf(Vector2(values.data(), n)[makeSlice(start, stop, step)]), expected))
            << "(" << start << ", " << stop << ", " << step << ") of " << n;
    });
    EXPECT_GT(compared, 100'000u);
}

TEST(Vector2Slice, GivesAColumnWhateverTheSourceIs) {
    Vector2 slice = makeRow({1, 2, 3, 4})[makeSlice(1, 3, 1)];
    EXPECT_EQ(slice.orientation(), Column);
    EXPECT_TRUE(sameBits(elementsOf(slice), std::vector<double>{2, 3}));
}

TEST(Vector2Slice, DropsALastPartialStride) {
    Vector2 const v = make({0, 1, 2, 3, 4, 5, 6, 7, 8, 9});
    EXPECT_TRUE(sameBits(elementsOf(v[makeSlice(0, 100, 3)]), std::vector<double>{0, 3, 6}));
}

TEST(Vector2, ReservesExactlyAndKeepsItsElements) {
    Vector2 v = make({1, 2, 3});
    v.reserve(100);
    double const* const storage = v.data();
    EXPECT_TRUE(v.resize(100).has_value());
    EXPECT_EQ(v.data(), storage);
    EXPECT_TRUE(v.resize(101).has_value());
    EXPECT_NE(v.data(), storage);
    EXPECT_EQ(v[2], 3.0);
    EXPECT_EQ(v[100], 0.0);
}

TEST(Vector2, ShrinksAndGrowsWithAFill) {
    Vector2 v = makeRow({1, 2, 3});
    double const* const storage = v.data();
    EXPECT_TRUE(v.resize(2, 9.0).has_value());
    EXPECT_EQ(v.data(), storage);
    EXPECT_TRUE(sameBits(elementsOf(v), std::vector<double>{1, 2}));
    EXPECT_TRUE(v.resize(3, 8.0).has_value());
    EXPECT_EQ(v.data(), storage); // within the capacity
    EXPECT_TRUE(v.resize(5, 9.0).has_value());
    EXPECT_TRUE(sameBits(elementsOf(v), std::vector<double>{1, 2, 8, 9, 9}));
    EXPECT_EQ(v.orientation(), Row);
}

TEST(Vector2, GrowsWithAFillThatIsOneOfItsElements) {
    Vector2 v = make({7, 2});
    EXPECT_TRUE(v.resize(5, v[0]).has_value());
    EXPECT_TRUE(sameBits(elementsOf(v), std::vector<double>{7, 2, 7, 7, 7}));
}

TEST(Vector2, ReportsALengthBeyondTheLimitFromResizeAsTheUnspecificError) {
    Vector2 v = make({1, 2, 3});
    auto const result = v.resize(tooLong);
    ASSERT_FALSE(result.has_value());
    EXPECT_TRUE(result.error() == System::ErrorCode2(-1, System::system_error_category()));
    EXPECT_TRUE(sameBits(elementsOf(v), std::vector<double>{1, 2, 3}));
    EXPECT_FALSE(v.resize(tooLong - 1).has_value()); // no memory for that
    EXPECT_EQ(v.length(), 3u);
}

TEST(Vector2, ThrowsForLengthsBeyondTheLimitElsewhere) {
    EXPECT_EQ(lengthErrorOf([] { Vector2 const v(tooLong); }), "vector too long");
    EXPECT_EQ(lengthErrorOf([] { Vector2 const v(tooLong, 1.0); }), "vector too long");
    EXPECT_EQ(lengthErrorOf([] { Vector2 const v(std::numeric_limits<std::size_t>::max()); }),
              "vector too long");
    double const x = 1.0;
    EXPECT_EQ(lengthErrorOf([&] { Vector2 const v(&x, tooLong); }), "vector too long");
    EXPECT_EQ(lengthErrorOf([&] { Vector2 const v(VectorView2(&x, tooLong, Row)); }), "vector too long");
    EXPECT_EQ(lengthErrorOf([] { Vector2().reserve(tooLong); }), "vector too long");
    EXPECT_THROW(Vector2(tooLong - 1), std::bad_alloc);
    EXPECT_THROW(Vector2().reserve(tooLong - 1), std::bad_alloc);
}

TEST(Vector2, ThrowsWhenMemoryIsShort) {
    if (!FailingAllocations::areSupported())
        GTEST_SKIP() << "the sanitizers' heap cannot be made to fail";
    Vector2 const source(1000, 1.0);
    FailingAllocations const failing(1000);
    EXPECT_THROW(Vector2(1000), std::bad_alloc);
    EXPECT_THROW(Vector2(1000, 2.0), std::bad_alloc);
    EXPECT_THROW(static_cast<void>(Vector2(source)), std::bad_alloc);
    EXPECT_THROW(static_cast<void>(source + source), std::bad_alloc);
}

TEST(Vector2Text, SeparatesElementsByCommas) {
    EXPECT_EQ(textOf(Vector2()), "[  ]");
    EXPECT_EQ(textOf(Vector2(3)), "[ 0, 0, 0 ]");
    EXPECT_EQ(textOf(make({1, 2.5, 1.0 / 3.0})), "[ 1, 2.5, 0.333333 ]");
    EXPECT_EQ(textOf(make({1e-10, -1e20, 123456789})), "[ 1e-10, -1e+20, 1.23457e+08 ]");
}

TEST(Vector2Text, IsTheSameForBothOrientations) {
    EXPECT_EQ(textOf(makeRow({1, 2})), textOf(make({1, 2})));
}

} // namespace

} // namespace Tervane::Math

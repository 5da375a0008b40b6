#include <Math/Dimensions.h>
#include <Math/ExecutionPolicy.h>
#include <Math/Index.h>
#include <Math/MatrixLayout.h>
#include <Math/Slice.h>
#include <Math/Transpose.h>
#include <Math/VectorOrientation.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace Tervane::Math {

namespace {

template<class E>
constexpr bool isPlainThirtyTwoBit =
    std::is_same_v<std::underlying_type_t<E>, std::int32_t>&& std::is_convertible_v<E, int>;

static_assert(isPlainThirtyTwoBit<VectorOrientation> && isPlainThirtyTwoBit<MatrixLayout>);
static_assert(isPlainThirtyTwoBit<Transpose> && isPlainThirtyTwoBit<AlgorithmExecutionPolicy>);
static_assert(Row == 0 && Column == 1 && VectorOrientation::Column == Column);
static_assert(ColumnMajor == 1);
static_assert(NoTranspose == 0 && Transposed == 1 && ConjugateTransposed == 2);
static_assert(Inline == 0 && Parallel == 1 && ParallelUnsequenced == 2 && Sequenced == 3);

template<class T>
constexpr bool isPlainValue = std::is_trivially_copyable_v<T>&& std::is_trivially_destructible_v<T>;

static_assert(isPlainValue<Dimensions> && sizeof(Dimensions) == 16);
static_assert(isPlainValue<Index> && sizeof(Index) == 16);
static_assert(isPlainValue<Slice> && sizeof(Slice) == 12);
static_assert(std::is_same_v<decltype(Dimensions().rows()), std::size_t const&>);
static_assert(std::is_same_v<decltype(Index().row()), std::size_t>);
static_assert(!std::is_default_constructible_v<Slice> && !std::is_constructible_v<Slice, int, int, int>);

TEST(Dimensions, AreZeroByDefault) {
    EXPECT_EQ(Dimensions().rows(), 0u);
    EXPECT_EQ(Dimensions().columns(), 0u);
}

TEST(Dimensions, GiveReferencesToTheirFields) {
    Dimensions const d(3, 4);
    EXPECT_EQ(&d.rows(), &d.rows());
    EXPECT_EQ(d.rows(), 3u);
    EXPECT_EQ(d.columns(), 4u);
}

TEST(Dimensions, AreEqualWhenBothNumbersAre) {
    EXPECT_TRUE(Dimensions(2, 3) == Dimensions(2, 3));
    EXPECT_TRUE(Dimensions(2, 3) != Dimensions(3, 2));
    EXPECT_TRUE(Dimensions(2, 3) != Dimensions(2, 4));
    EXPECT_FALSE(Dimensions(2, 3) == Dimensions(1, 3));
}

TEST(Index, IsZeroByDefault) {
    EXPECT_EQ(Index().row(), 0u);
    EXPECT_EQ(Index().column(), 0u);
}

TEST(Index, ChainsItsChanges) {
    Index i(1, 2);
    Index& chained = i.setRow(4).incrementColumn(3);
    EXPECT_EQ(&chained, &i);
    EXPECT_EQ(i.row(), 4u);
    EXPECT_EQ(i.column(), 5u);
    i.setColumn(7).incrementRow(2);
    EXPECT_EQ(i.row(), 6u);
    EXPECT_EQ(i.column(), 7u);
}

TEST(Index, WrapsWithoutACheck) {
    Index i(std::numeric_limits<std::size_t>::max(), 0);
    EXPECT_EQ(i.incrementRow(2).row(), 1u);
}

TEST(Slice, KeepsItsFieldsInTheOrderGiven) {
    Slice const slice = makeSlice(1, -2, 3);
    EXPECT_EQ(slice.start(), 1);
    EXPECT_EQ(slice.stop(), -2);
    EXPECT_EQ(slice.step(), 3);
    Slice copy = makeSlice(0, 0, 1);
    copy = slice;
    EXPECT_EQ(copy.stop(), -2);
}

} // namespace

} // namespace Tervane::Math

#include "kit/Allocations.h"
#include "kit/Bits.h"
#include "kit/LengthErrors.h"
#include "kit/SpecialValues.h"

#include <Math/Matrix2.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <new>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tervane::Math {

namespace {

using namespace TestKit;

static_assert(sizeof(Matrix2) == 40 && !std::is_polymorphic_v<Matrix2>);
static_assert(std::is_nothrow_move_constructible_v<Matrix2> && std::is_nothrow_move_assignable_v<Matrix2>);
template<class M>
concept HasSize = requires(M& m) {
    m.size();
};
static_assert(HasSize<Matrix2> && !HasSize<Matrix2 const>);
static_assert(std::is_same_v<decltype(std::declval<Matrix2 const&>()[Index()]), double const&>);
static_assert(std::is_same_v<decltype(std::declval<Matrix2 const&>()[0ul]), double const*>);
static_assert(std::is_same_v<decltype(std::declval<Matrix2&>()[0ul]), double*>);

std::span<double const> elementsOf(Matrix2 const& m) {
    return {m.data(), m.rows() * m.columns()};
}

TEST(Matrix2, IsEmptyAndSquareByDefault) {
    Matrix2 m;
    EXPECT_EQ(m.size(), Dimensions(0, 0));
    EXPECT_EQ(m.data(), nullptr);
    EXPECT_TRUE(m.isSquare());
}

TEST(Matrix2, IsFilledWithAValue) {
    Matrix2 m(2, 3, 1.5);
    EXPECT_EQ(m.rows(), 2u);
    EXPECT_EQ(m.columns(), 3u);
    EXPECT_EQ(m.size(), Dimensions(2, 3));
    EXPECT_FALSE(m.isSquare());
    EXPECT_TRUE(sameBits(elementsOf(m), std::vector<double>(6, 1.5)));
    for (double const x : specialValues())
        EXPECT_TRUE(sameBits(elementsOf(Matrix2(Dimensions(3, 3), x)), std::vector<double>(9, x)));
}

TEST(Matrix2, AllocatesNothingWithoutElementsButKeepsTheDimensions) {
    AllocationCounter const counter;
    Matrix2 const m(0, 5, 1.0);
    EXPECT_EQ(m.data(), nullptr);
    EXPECT_EQ(m.rows(), 0u);
    EXPECT_EQ(m.columns(), 5u);
    Matrix2 const n(5, 0, 1.0);
    EXPECT_EQ(n.data(), nullptr);
    EXPECT_EQ(counter.count(), 0u);
}

TEST(Matrix2, AlignsItsElements) {
    for (std::size_t n = 1; n < 20; ++n)
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(Matrix2(n, 3, 0.0).data()) % 64, 0u);
}

TEST(Matrix2, KeepsItsElementsColumnAfterColumn) {
    Matrix2 m(2, 2, 0.0);
    for (std::size_t k = 0; k < 4; ++k)
        m.data()[k] = static_cast<double>(k + 1);
    Matrix2 const& constant = m;
    EXPECT_EQ(constant[Index(0, 1)], 3.0);
    EXPECT_EQ(constant[1][0], 3.0);
    EXPECT_EQ(constant[1][1], 4.0);
    m[Index(1, 0)] = 7.0;
    m[1][0] = 8.0;
    EXPECT_TRUE(sameBits(elementsOf(m), std::vector<double>{1, 7, 8, 4}));
    for (std::size_t r = 0; r < 2; ++r)
        for (std::size_t c = 0; c < 2; ++c)
            EXPECT_EQ(&m[Index(r, c)], m.data() + r + c * 2);
}

TEST(Matrix2, CopiesElementsAndDimensions) {
    Matrix2 const source(3, 2, 2.5);
    Matrix2 copy(source);
    EXPECT_TRUE(sameBits(elementsOf(copy), elementsOf(source)));
    EXPECT_EQ(copy.size(), Dimensions(3, 2));
    EXPECT_NE(copy.data(), source.data());
}

TEST(Matrix2, KeepsItsShapeWhenMovedFrom) {
    Matrix2 source(3, 2, 2.5);
    double const* const storage = source.data();
    AllocationCounter const counter;
    Matrix2 target(std::move(source));
    EXPECT_EQ(target.data(), storage);
    EXPECT_EQ(source.rows(), 3u);
    EXPECT_EQ(source.columns(), 2u);
    EXPECT_EQ(source.data(), nullptr);
    Matrix2 assigned;
    assigned = std::move(target);
    EXPECT_EQ(assigned.data(), storage);
    EXPECT_EQ(target.size(), Dimensions(3, 2));
    EXPECT_EQ(target.data(), nullptr);
    EXPECT_EQ(counter.count(), 0u);
}

TEST(Matrix2, AssignsIntoItsOwnStorageWhenItSuffices) {
    Matrix2 large(4, 4, 1.0);
    double const* const storage = large.data();
    Matrix2 const small(2, 3, 5.0);
    large = small;
    EXPECT_EQ(large.data(), storage);
    EXPECT_EQ(large.size(), Dimensions(2, 3));
    EXPECT_TRUE(sameBits(elementsOf(large), elementsOf(small)));
    // Grown by one half, from 10 to 15.
    Matrix2 growing(10, 1, 0.0);
    Matrix2 const eleven(11, 1, 1.0), fifteen(5, 3, 2.0);
    growing = eleven;
    double const* const grown = growing.data();
    growing = fifteen;
    EXPECT_EQ(growing.data(), grown);
}

TEST(Matrix2, KeepsItsElementsWhenAssignedToItself) {
    Matrix2 m(2, 2, 3.0);
    Matrix2& same = m;
    m = same;
    m = std::move(same);
    EXPECT_TRUE(sameBits(elementsOf(m), std::vector<double>(4, 3.0)));
}

TEST(Matrix2, RefusesCountsBeyondTheLimit) {
    EXPECT_EQ(lengthErrorOf([] { Matrix2 const m(std::size_t{1} << 61, 1, 0.0); }), "vector too long");
    EXPECT_EQ(lengthErrorOf([] { Matrix2 const m(std::size_t{1} << 31, std::size_t{1} << 30, 0.0); }),
              "vector too long");
    // A product that wraps around to nothing.
    EXPECT_EQ(lengthErrorOf([] { Matrix2 const m(std::size_t{1} << 33, std::size_t{1} << 33, 0.0); }),
              "vector too long");
    EXPECT_THROW(Matrix2((std::size_t{1} << 61) - 1, 1, 0.0), std::bad_alloc);
}

} // namespace

} // namespace Tervane::Math

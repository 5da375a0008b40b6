#include "kit/Allocations.h"
#include "kit/Bits.h"
#include "kit/LengthErrors.h"
#include "kit/SpecialValues.h"
#include "legacy/Access.h"
#include "legacy/Tables.h"

#include <Math/Matrix.h>
#include <Math/Vector.h>
#include <Math/ViewVector.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <new>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tervane::Math::LegacyTest {

namespace {

using Detail::LegacyAccess;
using TestKit::AllocationCounter;
using TestKit::sameBits;

using Values = std::vector<double>;

/// The whole element array, whatever shape the matrix reports.
Values arrayOf(Matrix const& m) {
    return Values(LegacyAccess::elements(m).begin(), LegacyAccess::elements(m).end());
}

/// A matrix with the given elements, column after column.
Matrix matrixOf(std::size_t rows, std::size_t columns, Values const& columnMajor) {
    Matrix m(rows, columns, 0.0);
    for (std::size_t i = 0; i < columnMajor.size(); ++i)
        m.data()[i] = columnMajor[i];
    return m;
}

TEST(Matrix, DefaultIsEmptyWithoutStorage) {
    Matrix const m;
    EXPECT_EQ(m.size(), Dimensions(0, 0));
    EXPECT_EQ(m.data(), nullptr);
    EXPECT_FALSE(m.isSquare());
    EXPECT_EQ(m.majorOrder(), ColumnMajor);
    EXPECT_EQ(static_cast<int>(m.majorOrder()), 1);
}

TEST(Matrix, IsFilled) {
    for (double const fill : TestKit::specialValues()) {
        Matrix const m(2, 3, fill);
        EXPECT_EQ(m.rows(), 2U);
        EXPECT_EQ(m.columns(), 3U);
        EXPECT_EQ(m.size(), Dimensions(2, 3));
        EXPECT_TRUE(sameBits(arrayOf(m), Values(6, fill)));
        EXPECT_TRUE(sameBits(arrayOf(Matrix(Dimensions(3, 1), fill)), Values(3, fill)));
    }
    EXPECT_EQ(Matrix(0, 4, 1.0).size(), Dimensions(0, 4));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(Matrix(3, 3, 1.0).data()) % 64, 0U);
}

TEST(Matrix, StoresColumnAfterColumn) {
    Matrix m(2, 3, 0.0);
    double next = 1.0;
    for (std::size_t r = 0; r < 2; ++r)
        for (std::size_t c = 0; c < 3; ++c)
            m.set(r, c, next++);
    EXPECT_EQ(arrayOf(m), (Values{1, 4, 2, 5, 3, 6}));
    EXPECT_EQ(m[2][1], 6.0) << "the column comes first";
    EXPECT_EQ(std::as_const(m)[1][0], 2.0);
    for (std::size_t r = 0; r < 2; ++r)
        for (std::size_t c = 0; c < 3; ++c) {
            EXPECT_EQ(&m[Index(r, c)], m.data() + r + 2 * c);
            EXPECT_EQ(&std::as_const(m)[Index(r, c)], m.data() + r + 2 * c);
            EXPECT_EQ(&m[c][r], m.data() + r + 2 * c);
        }
    m[Index(1, 0)] = 40.0;
    m[0][0] = 10.0;
    EXPECT_EQ(arrayOf(m), (Values{10, 40, 2, 5, 3, 6}));
    EXPECT_EQ(std::as_const(m).data(), m.data());
}

TEST(Matrix, FromAnyTableCopiesRowAfterRowIntoColumns) {
    OwnTable const table(2, 3, {1, 2, 3, 4, 5, 6});
    table.takeCalls();
    Matrix const m(table);
    std::vector<std::string> elements;
    for (std::string const& call : table.takeCalls())
        if (call.starts_with("element"))
            elements.push_back(call);
    EXPECT_EQ(elements, (std::vector<std::string>{"element 0,0", "element 0,1", "element 0,2", "element 1,0",
                                                  "element 1,1", "element 1,2"}));
    EXPECT_EQ(m.size(), Dimensions(2, 3));
    EXPECT_EQ(arrayOf(m), (Values{1, 4, 2, 5, 3, 6}));
    EXPECT_EQ(arrayOf(Matrix(OwnMatrix(1, 2, {7, 8}))), (Values{7, 8}));
    EXPECT_EQ(Matrix(OwnVector(1, 2, {7, 8})).size(), Dimensions(1, 2));
    EXPECT_EQ(Matrix(Vector{1.0, 2.0}).size(), Dimensions(2, 1));
    EXPECT_EQ(Matrix(OwnTable(0, 0, {})).size(), Dimensions(0, 0));
    static_assert(!std::is_convertible_v<OwnTable, Matrix>);
    static_assert(!std::is_convertible_v<Vector, Matrix>);
}

TEST(Matrix, CopyIsDeep) {
    Matrix const source = matrixOf(2, 2, {1, 2, 3, 4});
    Matrix const copy(source);
    EXPECT_EQ(arrayOf(copy), arrayOf(source));
    EXPECT_EQ(copy.size(), Dimensions(2, 2));
    EXPECT_NE(copy.data(), source.data());
}

TEST(Matrix, CopyAssignmentReusesTheStorage) {
    Matrix target(4, 4, 1.0);
    double const* const storage = target.data();
    Matrix const source = matrixOf(1, 3, {1, 2, 3});
    AllocationCounter const counter;
    EXPECT_EQ(&(target = source), &target);
    EXPECT_EQ(counter.count(), 0U);
    EXPECT_EQ(target.data(), storage);
    EXPECT_EQ(target.size(), Dimensions(1, 3));
    EXPECT_EQ(arrayOf(target), (Values{1, 2, 3}));
    Matrix small(1, 1, 0.0);
    small = target;
    EXPECT_EQ(arrayOf(small), (Values{1, 2, 3}));
}

TEST(Matrix, MovesTakeTheDataObjectAndLeaveNone) {
    Matrix source = matrixOf(1, 3, {1, 2, 3});
    double const* const storage = source.data();
    AllocationCounter const counter;
    Matrix target(std::move(source));
    EXPECT_EQ(target.data(), storage);
    EXPECT_FALSE(LegacyAccess::hasData(source));
    EXPECT_EQ(&(source = std::move(target)), &source);
    EXPECT_EQ(source.data(), storage);
    EXPECT_FALSE(LegacyAccess::hasData(target));
    EXPECT_EQ(counter.count(), 0U);
    static_assert(std::is_nothrow_move_constructible_v<Matrix>);
    static_assert(std::is_nothrow_move_assignable_v<Matrix>);
}

TEST(Matrix, MovedFromMayBeAssignedEitherWay) {
    Matrix m(1, 1, 5.0);
    Matrix const taken(std::move(m));
    m = taken;
    EXPECT_EQ(arrayOf(m), (Values{5}));
}

TEST(Matrix, AssignedToItselfStaysAsItIs) {
    Matrix m(1, 1, 5.0);
    Matrix const& same = m;
    m = same;
    EXPECT_EQ(arrayOf(m), (Values{5}));
    Matrix const taken(std::move(m));
    m = same;
    EXPECT_FALSE(LegacyAccess::hasData(m));
}

TEST(Matrix, TransposedSwapsRowsAndColumns) {
    Matrix const m = matrixOf(2, 3, {1, 4, 2, 5, 3, 6});
    Matrix const t = m.transposed();
    ASSERT_EQ(t.size(), Dimensions(3, 2));
    for (std::size_t r = 0; r < 2; ++r)
        for (std::size_t c = 0; c < 3; ++c)
            EXPECT_EQ(t[Index(c, r)], m[Index(r, c)]);
    EXPECT_EQ(Matrix().transposed().size(), Dimensions(0, 0));
    EXPECT_EQ(Matrix(0, 3, 1.0).transposed().size(), Dimensions(3, 0));
    Values const x = TestKit::specialValues();
    EXPECT_TRUE(sameBits(arrayOf(matrixOf(1, x.size(), x).transposed()), x));
}

class Shifted : public Matrix {
public:
    using Matrix::Matrix;
    using Matrix::operator[];
    double const& operator[](Index const&) const override { return _constant; }

private:
    double _constant = 8.0;
};

TEST(Matrix, TransposedReadsThroughTheVirtualAccess) {
    EXPECT_EQ(arrayOf(Shifted(1, 2, 1.0).transposed()), (Values{8, 8}));
}

// --- resize

TEST(MatrixResize, LeavesTheReportedShape) {
    Matrix m = matrixOf(2, 2, {1, 2, 3, 4});
    EXPECT_EQ(&m.resize(3, 3, 9.0), &m);
    EXPECT_EQ(m.rows(), 2U);
    EXPECT_EQ(m.columns(), 2U);
    EXPECT_EQ(m.size(), Dimensions(2, 2));
    EXPECT_EQ(arrayOf(m), (Values{1, 2, 3, 4, 9, 9, 9, 9, 9}));
}

TEST(MatrixResize, ShrinksTheArrayOnly) {
    Matrix m = matrixOf(2, 2, {1, 2, 3, 4});
    double const* const storage = m.data();
    m.resize(2, 1, 0.0);
    EXPECT_EQ(arrayOf(m), (Values{1, 2}));
    EXPECT_EQ(m.size(), Dimensions(2, 2));
    EXPECT_EQ(m.data(), storage);
    EXPECT_EQ(LegacyAccess::elements(m).capacity(), 4U);
}

TEST(MatrixResize, KeepsOldElementsInTheStorageBehindTheNewEnd) {
    Matrix m = matrixOf(2, 2, {1, 2, 3, 4});
    m.resize(1, 1, 9.0);
    EXPECT_EQ(arrayOf(m), (Values{1}));
    ASSERT_GE(LegacyAccess::elements(m).capacity(), 4U);
    EXPECT_EQ(Values(m.data(), m.data() + 4), (Values{1, 2, 3, 4}));
    EXPECT_EQ(m[Index(1, 1)], 4.0) << "still found under the reported shape";
}

TEST(MatrixResize, LeavesEveryElementOfTheReportedShapeToCopies) {
    // Under the address sanitizer this also shows that at(), which goes by the shape, stays within the
    // storage.
    Matrix shrunken = matrixOf(2, 2, {1, 2, 3, 4});
    shrunken.resize(1, 1, 9.0);
    Matrix const constructed(shrunken);
    Matrix intoNothing;
    intoNothing = shrunken;
    Matrix intoMore(5, 5, 7.0);
    intoMore = constructed;
    Matrix intoLess(1, 1, 7.0);
    intoLess = intoMore;
    Matrix const* const copies[] = {&constructed, &intoNothing, &intoMore, &intoLess};
    for (Matrix const* const copy : copies) {
        EXPECT_EQ(arrayOf(*copy), (Values{1}));
        EXPECT_EQ(copy->at(0, 0), 1.0);
        EXPECT_EQ(copy->at(1, 0), 2.0);
        EXPECT_EQ(copy->at(0, 1), 3.0);
        EXPECT_EQ(copy->at(1, 1), 4.0);
        EXPECT_EQ(arrayOf(copy->transposed()), (Values{1, 3, 2, 4}));
    }
}

TEST(MatrixResize, ToTheReportedShapeChangesNothing) {
    Matrix m = matrixOf(2, 2, {1, 2, 3, 4});
    m.resize(1, 1, 9.0);
    m.resize(2, 2, 9.0);
    EXPECT_EQ(arrayOf(m), (Values{1})) << "not even an array of another length";
    Matrix untouched = matrixOf(2, 2, {1, 2, 3, 4});
    double const* const storage = untouched.data();
    untouched.resize(2, 2, 9.0);
    EXPECT_EQ(arrayOf(untouched), (Values{1, 2, 3, 4}));
    EXPECT_EQ(untouched.data(), storage);
}

TEST(MatrixResize, WithTheSameRowsAppendsOrDropsColumns) {
    Matrix m = matrixOf(2, 1, {1, 2});
    m.resize(2, 3, 7.0);
    EXPECT_EQ(arrayOf(m), (Values{1, 2, 7, 7, 7, 7}));
    EXPECT_EQ(m.size(), Dimensions(2, 1));
    m.resize(2, 0, 7.0);
    EXPECT_EQ(arrayOf(m), Values());
}

TEST(MatrixResize, AgainAndAgainStaysWithinTheStorage) {
    // After shrinking, the reported shape counts more elements than the array has. Under the address
    // sanitizer this also shows that none of them is read or written when it grows again.
    Matrix m = matrixOf(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
    m.resize(1, 2, 0.0);
    Matrix copy(m);
    EXPECT_EQ(arrayOf(copy), (Values{1, 2}));
    copy.resize(4, 1, 5.0);
    EXPECT_EQ(arrayOf(copy), (Values{1, 2, 5, 5}));
    copy.resize(100, 100, 6.0);
    EXPECT_EQ(arrayOf(copy).size(), 10'000U);
    EXPECT_EQ(Values(copy.data(), copy.data() + 5), (Values{1, 2, 5, 5, 6}));
    EXPECT_EQ(copy.size(), Dimensions(3, 3));
    Matrix empty;
    empty.resize(2, 2, 3.0);
    EXPECT_EQ(arrayOf(empty), (Values{3, 3, 3, 3}));
    EXPECT_EQ(empty.size(), Dimensions(0, 0));
}

TEST(MatrixResize, TakesAnElementAsFill) {
    Matrix m = matrixOf(1, 2, {1, 2});
    m.resize(10, 10, m[1][0]);
    EXPECT_EQ(arrayOf(m).back(), 2.0);
    Matrix zeros(1, 1, 4.0);
    zeros.resize(2, 1);
    EXPECT_EQ(arrayOf(zeros), (Values{4, 0}));
}

TEST(Matrix, RefusesMoreThanTheLargestLength) {
    std::string const text = "vector too long";
    std::size_t const half = std::size_t{1} << 32;
    EXPECT_EQ(TestKit::lengthErrorOf([&] { Matrix(half, half, 0.0); }), text)
        << "the product would wrap to none";
    EXPECT_EQ(TestKit::lengthErrorOf([&] { Matrix(Dimensions(std::size_t{1} << 61, 1), 0.0); }), text);
    Matrix m = matrixOf(1, 2, {1, 2});
    EXPECT_EQ(TestKit::lengthErrorOf([&] { m.resize(half, half); }), text);
    EXPECT_EQ(TestKit::lengthErrorOf([&] { m.resize(1, std::size_t{1} << 61); }), text);
    EXPECT_EQ(arrayOf(m), (Values{1, 2}));
    EXPECT_EQ(TestKit::lengthErrorOf([&] { Matrix(OwnTable(half, half, {})); }), text);
}

TEST(Matrix, MissingMemoryThrows) {
    if (!TestKit::FailingAllocations::areSupported())
        GTEST_SKIP() << "this build's heap cannot be made to fail";
    Matrix m = matrixOf(1, 2, {1, 2});
    TestKit::FailingAllocations const noLargeBlocks(100'000);
    EXPECT_THROW(Matrix(300, 300, 0.0), std::bad_alloc);
    EXPECT_THROW(m.resize(300, 300, 0.0), std::bad_alloc);
    EXPECT_EQ(arrayOf(m), (Values{1, 2}));
}

// --- stack

TEST(MatrixStack, JoinsAGridOfBlocks) {
    Matrix const p = matrixOf(2, 2, {1, 2, 3, 4});
    Matrix const q = matrixOf(2, 1, {5, 6});
    Matrix const r = matrixOf(1, 2, {7, 8});
    Matrix const s = matrixOf(1, 1, {9});
    Matrix const m = Matrix::stack({{p, q}, {r, s}});
    EXPECT_EQ(m.size(), Dimensions(3, 3));
    EXPECT_EQ(arrayOf(m), (Values{1, 2, 7, 3, 4, 8, 5, 6, 9}));
}

TEST(MatrixStack, OfNothingIsEmpty) {
    EXPECT_EQ(Matrix::stack({}).size(), Dimensions(0, 0));
    EXPECT_EQ(Matrix::stack({}).data(), nullptr);
}

TEST(MatrixStack, OfOneBlockIsACopy) {
    Matrix const p = matrixOf(2, 2, {1, 2, 3, 4});
    Matrix const m = Matrix::stack({{p}});
    EXPECT_EQ(m.size(), Dimensions(2, 2));
    EXPECT_EQ(arrayOf(m), arrayOf(p));
    EXPECT_NE(m.data(), p.data());
}

TEST(MatrixStack, AcceptsEmptyBlocksThatFit) {
    Matrix const m = Matrix::stack({{Matrix(2, 0, 0.0), matrixOf(2, 1, {1, 2})}, {Matrix(0, 1, 0.0)}});
    EXPECT_EQ(m.size(), Dimensions(2, 1));
    EXPECT_EQ(arrayOf(m), (Values{1, 2}));
}

TEST(MatrixStackDeathTest, InconsistentGridsFailAnAssertion) {
#ifdef NDEBUG
    GTEST_SKIP() << "this build has no assertions";
#else
    Matrix const square(2, 2, 1.0);
    Matrix const flat(1, 2, 1.0);
    EXPECT_DEATH(Matrix::stack({{square, flat}}), "isConsistent");
    EXPECT_DEATH(Matrix::stack({{square}, {square, square}}), "isConsistent");
    EXPECT_DEATH(Matrix::stack({{square}, {}}), "isConsistent");
#endif
}

} // namespace

} // namespace Tervane::Math::LegacyTest

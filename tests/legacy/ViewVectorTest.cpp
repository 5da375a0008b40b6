#include "kit/Allocations.h"
#include "legacy/Access.h"
#include "legacy/Tables.h"

#include <Math/Matrix.h>
#include <Math/Vector.h>
#include <Math/ViewVector.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tervane::Math::LegacyTest {

namespace {

using Detail::LegacyAccess;

constexpr double samples[] = {1.0, 2.0, 3.0, 4.0};

void expectSees(ViewVector const& v, double const* p, std::size_t n, VectorOrientation orientation) {
    EXPECT_EQ(v.data(), p);
    EXPECT_EQ(LegacyAccess::data(v).length, n);
    EXPECT_EQ(v.orientation(), orientation);
}

TEST(ViewVector, SeesTheElementsOfACaller) {
    ViewVector const column(samples, 4, Column);
    EXPECT_EQ(column.rows(), 4U);
    EXPECT_EQ(column.columns(), 1U);
    EXPECT_EQ(column.size(), Dimensions(4, 1));
    EXPECT_EQ(column.length(), 4U);
    EXPECT_EQ(&column[2], samples + 2);
    EXPECT_EQ(&column.value(3), samples + 3);
    EXPECT_EQ(&column[Index(2, 7)], samples + 2);
    EXPECT_EQ(column.begin(), samples);
    EXPECT_EQ(column.end(), samples + 4);
    ViewVector const row(samples, 4, Row);
    EXPECT_EQ(row.rows(), 1U);
    EXPECT_EQ(row.columns(), 4U);
    EXPECT_EQ(row.size(), Dimensions(1, 4));
    EXPECT_EQ(row.length(), 4U);
    EXPECT_EQ(&row[Index(7, 2)], samples + 2);
}

TEST(ViewVector, OfAnyOtherOrientationIsOneByOneAndReadsByColumn) {
    ViewVector const v(samples, 4, static_cast<VectorOrientation>(5));
    EXPECT_EQ(v.rows(), 1U);
    EXPECT_EQ(v.columns(), 1U);
    EXPECT_EQ(v.size(), Dimensions(1, 1));
    EXPECT_EQ(v.length(), 1U);
    EXPECT_EQ(&v[Index(7, 2)], samples + 2);
}

TEST(ViewVector, SeesAVectorInItsOrientation) {
    Vector const column{1.0, 2.0};
    expectSees(ViewVector(column), column.data(), 2, Column);
    Vector const row(ViewVector(samples, 3, Row));
    expectSees(ViewVector(row), row.data(), 3, Row);
    static_assert(!std::is_convertible_v<Vector, ViewVector>);
}

TEST(ViewVector, SeesWhatTheVectorWritesLater) {
    Vector v{1.0, 2.0};
    ViewVector const view(v);
    v[1] = 9.0;
    EXPECT_EQ(view[1], 9.0);
}

TEST(ViewVector, SeesAColumnOfAMatrix) {
    Matrix m(3, 2, 0.0);
    for (std::size_t r = 0; r < 3; ++r)
        for (std::size_t c = 0; c < 2; ++c)
            m.set(r, c, 10.0 * static_cast<double>(r) + static_cast<double>(c));
    for (std::size_t c = 0; c < 2; ++c) {
        ViewVector const view(m, c);
        expectSees(view, m[c], 3, Column);
        for (std::size_t r = 0; r < 3; ++r)
            EXPECT_EQ(view[r], m[Index(r, c)]);
    }
}

TEST(ViewVector, OfAMatrixWithoutRowsIsEmpty) {
    expectSees(ViewVector(Matrix(), 0), nullptr, 0, Column);
    expectSees(ViewVector(Matrix(0, 3, 1.0), 2), nullptr, 0, Column);
}

TEST(ViewVector, OfACallersMatrixWithoutRowsGoesThroughItsElementAccess) {
    /// A matrix without storage of its own that says where its columns would begin.
    struct Elsewhere : Matrix {
        using Matrix::operator[];
        double const& operator[](Index const& i) const override { return samples[i.column()]; }
    };
    expectSees(ViewVector(Elsewhere(), 2), samples + 2, 0, Column);
}

TEST(ViewVector, AssignedToItselfStaysAsItIs) {
    ViewVector view(samples, 3, Row);
    ViewVector const& same = view;
    view = same;
    expectSees(view, samples, 3, Row);
    ViewVector const taken(std::move(view));
    view = same;
    EXPECT_FALSE(LegacyAccess::hasData(view));
}

TEST(ViewVector, DefaultIsAnEmptyColumnAtNull) {
    expectSees(ViewVector(), nullptr, 0, Column);
    EXPECT_EQ(ViewVector().rows(), 0U);
    EXPECT_EQ(ViewVector().columns(), 1U);
    EXPECT_EQ(ViewVector().size(), Dimensions(0, 1));
}

TEST(ViewVector, EmptyReportsLengthOneAndEndsBehindOneElement) {
    ViewVector const byDefault;
    EXPECT_EQ(byDefault.length(), 1U);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(byDefault.end())
                  - reinterpret_cast<std::uintptr_t>(byDefault.data()),
              sizeof(double));
    ViewVector const column(samples, 0, Column);
    EXPECT_EQ(column.length(), 1U);
    EXPECT_EQ(column.end(), samples + 1);
    ViewVector const row(samples, 0, Row);
    EXPECT_EQ(row.rows(), 1U);
    EXPECT_EQ(row.columns(), 0U);
    EXPECT_EQ(row.length(), 1U);
    EXPECT_EQ(row.end(), samples + 1);
}

TEST(ViewVector, CopiesShareTheElements) {
    ViewVector const source(samples, 3, Row);
    ViewVector const copy(source);
    expectSees(copy, samples, 3, Row);
    ViewVector target;
    TestKit::AllocationCounter const counter;
    EXPECT_EQ(&(target = source), &target);
    EXPECT_EQ(counter.count(), 0U) << "the data object stays";
    expectSees(target, samples, 3, Row);
}

TEST(ViewVector, MovesTakeTheDataObjectAndLeaveNone) {
    ViewVector source(samples, 3, Row);
    ViewVector target(std::move(source));
    expectSees(target, samples, 3, Row);
    EXPECT_FALSE(LegacyAccess::hasData(source));
    EXPECT_EQ(&(source = std::move(target)), &source);
    expectSees(source, samples, 3, Row);
    EXPECT_FALSE(LegacyAccess::hasData(target));
    target = source;
    expectSees(target, samples, 3, Row);
    static_assert(std::is_nothrow_move_constructible_v<ViewVector>);
    static_assert(std::is_nothrow_move_assignable_v<ViewVector>);
}

TEST(ViewVector, SlicedSeesAPartInTheSameOrientation) {
    expectSees(ViewVector(samples, 4, Row).sliced(1, 2), samples + 1, 2, Row);
    expectSees(ViewVector(samples, 4, Column).sliced(0, 4), samples, 4, Column);
    expectSees(ViewVector(samples, 4, Column).sliced(4, 0), samples + 4, 0, Column);
    expectSees(ViewVector(samples, 2, Column).sliced(1, 3), samples + 1, 3, Column);
}

TEST(ViewVector, ReadsOnly) {
    static_assert(std::is_same_v<decltype(std::declval<ViewVector&>().data()), double const*>);
    static_assert(std::is_same_v<decltype(std::declval<ViewVector&>()[std::size_t{0}]), double const&>);
    SUCCEED() << "checked when compiled";
}

} // namespace

} // namespace Tervane::Math::LegacyTest

#include "kit/Allocations.h"
#include "legacy/Access.h"
#include "legacy/Tables.h"

#include <Math/BasicObject.h>
#include <Math/Matrix.h>
#include <Math/Vector.h>
#include <Math/ViewVector.h>

#include <gtest/gtest.h>

#include <type_traits>
#include <typeinfo>
#include <utility>

namespace Tervane::Math::LegacyTest {

namespace {

using Detail::LegacyAccess;
using System::BasicObject;

template<class T>
class OwnObject : public BasicObject<T> {
public:
    using T::operator[];
    double const& operator[](Index const&) const override { return _element; }
    std::size_t columns() const override { return 1; }
    double const* data() const override { return &_element; }
    std::size_t rows() const override { return 1; }

private:
    double _element = 5.0;
};

class OwnObjectMatrix : public OwnObject<AbstractMatrix> {
public:
    MatrixLayout majorOrder() const override { return ColumnMajor; }
};

TEST(BasicObject, HoldsOnePointerAndIsAbstract) {
    static_assert(std::is_abstract_v<BasicObject<AbstractMatrix>>);
    static_assert(std::is_abstract_v<BasicObject<AbstractVector>>);
    static_assert(std::is_base_of_v<AbstractMatrix, BasicObject<AbstractMatrix>>);
    static_assert(std::is_base_of_v<AbstractVector, BasicObject<AbstractVector>>);
    EXPECT_EQ(sizeof(BasicObject<AbstractMatrix>), 2 * sizeof(void*));
    EXPECT_EQ(sizeof(BasicObject<AbstractVector>), 2 * sizeof(void*));
}

TEST(BasicObject, IsTheBaseOfTheConcreteClassesAndHoldsAllOfTheirState) {
    static_assert(std::is_base_of_v<BasicObject<AbstractVector>, Vector>);
    static_assert(std::is_base_of_v<BasicObject<AbstractVector>, ViewVector>);
    static_assert(std::is_base_of_v<BasicObject<AbstractMatrix>, Matrix>);
    EXPECT_EQ(sizeof(Vector), 2 * sizeof(void*));
    EXPECT_EQ(sizeof(ViewVector), 2 * sizeof(void*));
    EXPECT_EQ(sizeof(Matrix), 2 * sizeof(void*));
}

TEST(BasicObject, MovesButDoesNotCopy) {
    static_assert(!std::is_copy_constructible_v<OwnObjectMatrix>);
    static_assert(!std::is_copy_assignable_v<OwnObjectMatrix>);
    static_assert(std::is_nothrow_move_constructible_v<OwnObjectMatrix>);
    static_assert(std::is_nothrow_move_assignable_v<OwnObjectMatrix>);
    SUCCEED() << "checked when compiled";
}

template<class Object>
void expectPlainDataThatMoves() {
    TestKit::AllocationCounter const counter;
    Object a;
    EXPECT_EQ(counter.count(), 1U) << "its data object";
    EXPECT_TRUE(LegacyAccess::hasData(a));
    Object b(std::move(a));
    EXPECT_FALSE(LegacyAccess::hasData(a));
    EXPECT_TRUE(LegacyAccess::hasData(b));
    EXPECT_EQ(&(a = std::move(b)), &a);
    EXPECT_TRUE(LegacyAccess::hasData(a));
    EXPECT_FALSE(LegacyAccess::hasData(b));
    EXPECT_EQ(counter.count(), 1U);
}

TEST(BasicObject, OwnsAPlainDataObjectThatMovesWithIt) {
    expectPlainDataThatMoves<OwnObject<AbstractVector>>();
    expectPlainDataThatMoves<OwnObjectMatrix>();
}

TEST(BasicObject, ServesACallersClassWhereverTheTableIsTaken) {
    OwnObject<AbstractVector> const v;
    EXPECT_EQ(Vector(v)[0], 5.0);
    OwnObjectMatrix const m;
    EXPECT_EQ(m.at(0, 0), 5.0);
    EXPECT_EQ(Matrix(m)[0][0], 5.0);
}

TEST(BasicObject, TypesAreOneOnBothSidesOfTheLibrary) {
    Matrix const m;
    Vector const v;
    ViewVector const w;
    for (AbstractDataTable const* table :
         {static_cast<AbstractDataTable const*>(&m), static_cast<AbstractDataTable const*>(&v),
          static_cast<AbstractDataTable const*>(&w)}) {
        EXPECT_EQ(dynamic_cast<Matrix const*>(table) != nullptr, table == &m);
        EXPECT_EQ(dynamic_cast<BasicObject<AbstractMatrix> const*>(table) != nullptr, table == &m);
        EXPECT_EQ(dynamic_cast<AbstractMatrix const*>(table) != nullptr, table == &m);
        EXPECT_EQ(dynamic_cast<Vector const*>(table) != nullptr, table == &v);
        EXPECT_EQ(dynamic_cast<ViewVector const*>(table) != nullptr, table == &w);
        EXPECT_EQ(dynamic_cast<BasicObject<AbstractVector> const*>(table) != nullptr, table != &m);
    }
    EXPECT_EQ(typeid(static_cast<AbstractDataTable const&>(v)), typeid(Vector));
}

} // namespace

} // namespace Tervane::Math::LegacyTest

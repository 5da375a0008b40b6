#include "legacy/Tables.h"

#include <Math/AbstractDataTable.h>
#include <Math/Matrix.h>
#include <Math/Vector.h>
#include <Math/ViewVector.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace Tervane::Math::LegacyTest {

namespace {

using Calls = std::vector<std::string>;

std::string messageOf(auto const& access) {
    try {
        access();
    } catch (std::out_of_range const& e) {
        return e.what();
    }
    return "no exception";
}

TEST(AbstractDataTable, IsAnAbstractRootWithoutState) {
    static_assert(std::is_abstract_v<AbstractDataTable>);
    static_assert(std::has_virtual_destructor_v<AbstractDataTable>);
    EXPECT_EQ(sizeof(AbstractDataTable), sizeof(void*));
    EXPECT_EQ(sizeof(AbstractMatrix), sizeof(void*));
    EXPECT_EQ(sizeof(AbstractVector), sizeof(void*));
}

TEST(AbstractDataTable, SizeReadsRowsAndColumnsThroughTheirSlots) {
    OwnTable const table(2, 3, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(table.size(), Dimensions(2, 3));
    Calls const calls = table.takeCalls();
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_NE(calls[0], calls[1]);
}

TEST(AbstractDataTable, IsValidIndexAsksForTheRowsFirstAndStopsThere) {
    OwnTable const table(2, 3, {1, 2, 3, 4, 5, 6});
    EXPECT_TRUE(table.isValidIndex(1, 2));
    EXPECT_EQ(table.takeCalls(), (Calls{"rows", "columns"}));
    EXPECT_FALSE(table.isValidIndex(2, 0));
    EXPECT_EQ(table.takeCalls(), (Calls{"rows"}));
    EXPECT_FALSE(table.isValidIndex(Index(0, 3)));
    EXPECT_EQ(table.takeCalls(), (Calls{"rows", "columns"}));
    EXPECT_FALSE(table.isValidIndex(Index(2, 3)));
    EXPECT_EQ(table.takeCalls(), (Calls{"rows"}));
    EXPECT_TRUE(table.isValidIndex(Index(0, 0)));
}

TEST(AbstractDataTable, AtReadsTheElementThroughItsSlot) {
    OwnTable const table(2, 3, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(table.at(1, 2), 6.0);
    EXPECT_EQ(table.takeCalls(), (Calls{"rows", "columns", "element 1,2"}));
    EXPECT_EQ(table.at(Index(0, 1)), 2.0);
    EXPECT_EQ(&table.at(Index(0, 1)), &table[Index(0, 1)]);
}

TEST(AbstractDataTable, AtOutsideTheTableThrowsOutOfRangeWithItsText) {
    OwnTable const table(2, 3, {1, 2, 3, 4, 5, 6});
    std::string const text = "data table index out of range";
    EXPECT_EQ(messageOf([&] { table.at(2, 0); }), text);
    EXPECT_EQ(messageOf([&] { table.at(0, 3); }), text);
    EXPECT_EQ(messageOf([&] { table.at(Index(2, 0)); }), text);
    EXPECT_EQ(messageOf([&] { table.at(Index(0, 3)); }), text);
    EXPECT_EQ(messageOf([&] { table.at(static_cast<std::size_t>(-1), 0); }), text);
    EXPECT_EQ(messageOf([&] { table.at(1, 2); }), "no exception");
}

TEST(AbstractDataTable, AtTestsTheIndexOfEveryConcreteTable) {
    std::string const text = "data table index out of range";
    Matrix const m(2, 3, 1.0);
    Vector const v{1.0, 2.0};
    ViewVector const w(v.data(), 2, Row);
    EXPECT_EQ(m.at(1, 2), 1.0);
    EXPECT_EQ(messageOf([&] { m.at(2, 0); }), text);
    EXPECT_EQ(v.at(1, 0), 2.0);
    EXPECT_EQ(messageOf([&] { v.at(0, 1); }), text);
    EXPECT_EQ(w.at(0, 1), 2.0);
    EXPECT_EQ(messageOf([&] { w.at(1, 0); }), text);
    EXPECT_EQ(messageOf([&] { Vector().at(0, 0); }), text);
}

TEST(AbstractDataTable, AssignmentReturnsTheTarget) {
    OwnTable target(1, 1, {1});
    OwnTable const source(1, 1, {2});
    AbstractDataTable& base = target;
    EXPECT_EQ(&(base = source), &base);
    EXPECT_EQ(target[Index(0, 0)], 1.0) << "the base has no state to assign";
}

} // namespace

} // namespace Tervane::Math::LegacyTest

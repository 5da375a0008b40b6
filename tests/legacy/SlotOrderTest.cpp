// The order of the virtual operations is part of the binary interface. Where the platform represents a
// pointer to a virtual member function by its slot's offset, the slot can be read from the pointer.

#include "legacy/Tables.h"

#include <Math/Matrix.h>
#include <Math/Vector.h>
#include <Math/ViewMatrix.h>
#include <Math/ViewVector.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#if defined(__GNUC__) && defined(__x86_64__)

namespace Tervane::Math::LegacyTest {

namespace {

// The number of a virtual operation counted as the interface does, with the destructor as 1: it takes the
// first two entries of the table.
template<class Member>
std::size_t slotOf(Member member) {
    struct {
        std::intptr_t offsetPlusOne;
        std::intptr_t adjustment;
    } parts;
    static_assert(sizeof(member) == sizeof(parts));
    std::memcpy(&parts, &member, sizeof(parts));
    EXPECT_EQ(parts.offsetPlusOne % 2, 1) << "not virtual";
    EXPECT_EQ(parts.adjustment, 0);
    return static_cast<std::size_t>(parts.offsetPlusOne - 1) / sizeof(void*);
}

template<class T>
using ByIndex = double const& (T::*)(Index const&) const;
template<class T>
using ByNumber = double const& (T::*)(std::size_t) const;
template<class T>
using Data = double const* (T::*)() const;

template<class T>
void expectTableSlots() {
    EXPECT_EQ(slotOf(static_cast<ByIndex<T>>(&T::operator[])), 2U);
    EXPECT_EQ(slotOf(&T::columns), 3U);
    EXPECT_EQ(slotOf(static_cast<Data<T>>(&T::data)), 4U);
    EXPECT_EQ(slotOf(&T::rows), 5U);
    EXPECT_EQ(slotOf(&T::size), 6U);
}

template<class T>
void expectVectorSlots() {
    expectTableSlots<T>();
    EXPECT_EQ(slotOf(static_cast<ByNumber<T>>(&T::operator[])), 7U);
    EXPECT_EQ(slotOf(&T::length), 8U);
    EXPECT_EQ(slotOf(&T::orientation), 9U);
    EXPECT_EQ(slotOf(&T::value), 10U);
}

TEST(SlotOrder, DestructorTakesTheFirstTwoEntriesAndAccessFollows) {
    expectTableSlots<AbstractDataTable>();
}

TEST(SlotOrder, MatricesAppendTheirLayout) {
    expectTableSlots<AbstractMatrix>();
    EXPECT_EQ(slotOf(&AbstractMatrix::majorOrder), 7U);
    expectTableSlots<Matrix>();
    EXPECT_EQ(slotOf(&Matrix::majorOrder), 7U);
    expectTableSlots<ViewMatrix>();
    EXPECT_EQ(slotOf(&ViewMatrix::majorOrder), 7U);
}

TEST(SlotOrder, VectorsAppendAccessLengthOrientationAndValue) {
    expectVectorSlots<AbstractVector>();
    expectVectorSlots<Vector>();
    expectVectorSlots<ViewVector>();
}

TEST(SlotOrder, TheEntriesOfTheTableAreCalledInThisOrder) {
    // The same through an object's own table, entry by entry.
    OwnTable const table(2, 3, {1, 2, 3, 4, 5, 6});
    void* const* entries = nullptr;
    std::memcpy(&entries, static_cast<void const*>(&table), sizeof(entries));
    auto const columns = reinterpret_cast<std::size_t (*)(void const*)>(entries[3]);
    auto const rows = reinterpret_cast<std::size_t (*)(void const*)>(entries[5]);
    EXPECT_EQ(columns(&table), 3U);
    EXPECT_EQ(rows(&table), 2U);
}

TEST(SlotOrder, ClassesOverrideExactlyTheSlotsThatAreTheirs) {
    using Size = Dimensions (AbstractDataTable::*)() const;
    using Length = std::size_t (AbstractVector::*)() const;
    using Value = ByNumber<AbstractVector>;
    static_assert(std::is_same_v<decltype(&ViewVector::size), Size>);
    static_assert(std::is_same_v<decltype(&ViewVector::length), Length>);
    static_assert(std::is_same_v<decltype(&ViewVector::value), Value>);
    static_assert(
        std::is_same_v<decltype(&ViewVector::orientation), VectorOrientation (ViewVector::*)() const>);
    static_assert(std::is_same_v<decltype(&Vector::size), Dimensions (Vector::*)() const>);
    static_assert(std::is_same_v<decltype(&Vector::length), std::size_t (Vector::*)() const>);
    static_assert(std::is_same_v<decltype(&Vector::value), ByNumber<Vector>>);
    static_assert(std::is_same_v<decltype(&Matrix::size), Dimensions (Matrix::*)() const>);
    static_assert(std::is_same_v<decltype(&ViewMatrix::rows), std::size_t (AbstractDataTable::*)() const>);
    SUCCEED() << "checked when compiled";
}

} // namespace

} // namespace Tervane::Math::LegacyTest

#endif

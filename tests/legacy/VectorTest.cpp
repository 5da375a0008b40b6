#include "kit/Allocations.h"
#include "kit/Bits.h"
#include "kit/LengthErrors.h"
#include "kit/Lengths.h"
#include "kit/SliceReference.h"
#include "kit/SpecialValues.h"
#include "legacy/Access.h"
#include "legacy/Tables.h"

#include <Math/Vector.h>
#include <Math/ViewVector.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <numeric>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tervane::Math::LegacyTest {

namespace {

using Detail::LegacyAccess;
using TestKit::AllocationCounter;
using TestKit::elementsOf;
using TestKit::sameBits;

using Values = std::vector<double>;

constexpr std::size_t tooMany = std::size_t{1} << 61;

Values valuesOf(Vector const& v) {
    return Values(v.begin(), v.end());
}

/// 0, 1, … n - 1.
Vector counting(std::size_t n) {
    Vector v(n);
    std::iota(v.begin(), v.end(), 0.0);
    return v;
}

std::size_t capacityOf(Vector const& v) {
    return LegacyAccess::elements(v).capacity();
}

// --- construction

TEST(Vector, DefaultIsAnEmptyColumnWithoutStorage) {
    Vector const v;
    EXPECT_EQ(v.length(), 0U);
    EXPECT_EQ(v.data(), nullptr);
    EXPECT_EQ(v.orientation(), Column);
    EXPECT_EQ(v.rows(), 0U);
    EXPECT_EQ(v.columns(), 1U);
    EXPECT_EQ(v.size(), Dimensions(0, 1));
}

TEST(Vector, FromALengthHoldsZeros) {
    for (std::size_t const n : TestKit::awkwardLengths()) {
        Vector const v(n);
        EXPECT_TRUE(sameBits(elementsOf(v), Values(n, 0.0)));
        EXPECT_EQ(v.orientation(), Column);
    }
}

TEST(Vector, FromALengthAndAFillHoldsCopiesOfIt) {
    for (double const fill : TestKit::specialValues())
        EXPECT_TRUE(sameBits(elementsOf(Vector(5, fill)), Values(5, fill)));
    EXPECT_EQ(Vector(2, 3.0).size(), Dimensions(2, 1));
}

TEST(Vector, FromAnArrayCopiesIt) {
    Values const source = TestKit::specialValues();
    Vector const v(source.data(), source.size());
    EXPECT_TRUE(sameBits(elementsOf(v), source));
    EXPECT_NE(v.data(), source.data());
    EXPECT_EQ(v.orientation(), Column);
    EXPECT_EQ(Vector(source.data(), 0).data(), nullptr) << "no elements allocate nothing";
    EXPECT_EQ(Vector(static_cast<double const*>(nullptr), 0).length(), 0U);
}

TEST(Vector, FromAStandardVectorCopiesIt) {
    EXPECT_TRUE(sameBits(elementsOf(Vector(Values{1.0, 2.0, 3.0})), Values{1.0, 2.0, 3.0}));
    EXPECT_EQ(Vector(Values()).length(), 0U);
    static_assert(!std::is_convertible_v<Values, Vector>);
}

TEST(Vector, FromAListHoldsItsValues) {
    Vector const direct{1.0, 2.0, 3.0};
    Vector const implicit = {1.0, 2.0, 3.0};
    EXPECT_TRUE(sameBits(elementsOf(direct), Values{1.0, 2.0, 3.0}));
    EXPECT_TRUE(sameBits(elementsOf(implicit), Values{1.0, 2.0, 3.0}));
    EXPECT_EQ(Vector({7.0}).length(), 1U);
    EXPECT_EQ(Vector({1, 2}).length(), 2U) << "a list of two numbers, not a length and a fill";
}

TEST(Vector, FromVectorsJoinsThemToAColumnWhateverTheyAre) {
    Vector const a = rowOf({1.0, 2.0});
    Vector const b{3.0, 4.0, 5.0};
    Vector const joined{a, b};
    EXPECT_EQ(valuesOf(joined), (Values{1.0, 2.0, 3.0, 4.0, 5.0}));
    EXPECT_EQ(joined.orientation(), Column);
    Vector const implicit = {a, Vector(), b, a};
    EXPECT_EQ(valuesOf(implicit), (Values{1.0, 2.0, 3.0, 4.0, 5.0, 1.0, 2.0}));
    Vector const parts[] = {b, a};
    Vector const fromArray(parts, 2);
    EXPECT_EQ(valuesOf(fromArray), (Values{3.0, 4.0, 5.0, 1.0, 2.0}));
    EXPECT_EQ(capacityOf(fromArray), 5U);
    EXPECT_EQ(Vector(parts, 0).length(), 0U);
    EXPECT_EQ(Vector(parts, 0).data(), nullptr);
}

TEST(Vector, FromVectorsAllocatesItsElementsOnce) {
    Vector const parts[] = {Vector(100), Vector(200), Vector(300)};
    std::size_t single = 0;
    {
        AllocationCounter const counter;
        Vector const v(600);
        single = counter.count();
    }
    AllocationCounter const counter;
    Vector const joined(parts, 3);
    EXPECT_EQ(counter.count(), single);
    EXPECT_EQ(joined.length(), 600U);
}

class Recorded : public OwnVector {
public:
    using OwnVector::OwnVector;
    using OwnVector::operator[];

    std::size_t length() const override {
        note("length");
        return OwnVector::rows();
    }
    VectorOrientation orientation() const override {
        note("orientation");
        return Row;
    }
    double const& value(std::size_t i) const override {
        note("value " + std::to_string(i));
        return OwnVector::data()[i];
    }
};

TEST(Vector, FromAnyVectorAsksForTheLengthBeforeEachValue) {
    Recorded const source(2, 1, {4.0, 5.0});
    Vector const v(source);
    EXPECT_EQ(valuesOf(v), (Values{4.0, 5.0}));
    EXPECT_EQ(v.orientation(), Row);
    std::vector<std::string> questions;
    for (std::string const& call : source.takeCalls())
        if (call != "rows" && call != "data")
            questions.push_back(call);
    EXPECT_EQ(questions, (std::vector<std::string>{"orientation", "length", "length", "value 0", "length",
                                                   "value 1", "length"}));
}

TEST(Vector, FromAnyVectorTakesItsDefaults) {
    Vector const row(OwnVector(1, 3, {1.0, 2.0, 3.0}));
    EXPECT_EQ(row.orientation(), Row);
    EXPECT_EQ(valuesOf(row), (Values{1.0, 2.0, 3.0}));
    Vector const column(OwnVector(3, 1, {1.0, 2.0, 3.0}));
    EXPECT_EQ(column.orientation(), Column);
    EXPECT_EQ(Vector(OwnVector(0, 0, {})).length(), 0U);
}

TEST(Vector, FromAnEmptyViewTakesTheOneElementThatTheViewReports) {
    double const beyond[] = {5.0};
    Vector const v(ViewVector(beyond, 0, Column));
    EXPECT_EQ(valuesOf(v), (Values{5.0}));
}

class Changing : public OwnVector {
public:
    Changing(std::size_t first, std::size_t later)
        : OwnVector(4, 1, {1.0, 2.0, 3.0, 4.0}), _first(first), _later(later) {}
    using OwnVector::operator[];
    std::size_t length() const override { return _asked++ == 0 ? _first : _later; }

private:
    std::size_t _first;
    std::size_t _later;
    mutable std::size_t _asked = 0;
};

TEST(Vector, FromAVectorThatChangesItsLengthStaysWithinItsStorage) {
    EXPECT_EQ(valuesOf(Vector(Changing(4, 2))), (Values{1.0, 2.0, 0.0, 0.0}));
    EXPECT_EQ(valuesOf(Vector(Changing(2, 4))), (Values{1.0, 2.0, 3.0, 4.0}));
}

TEST(Vector, FromDimensionsIgnoresItsFill) {
    Vector const row(Dimensions(1, 4), 7.0);
    EXPECT_TRUE(sameBits(elementsOf(row), Values(4, 0.0)));
    EXPECT_EQ(row.orientation(), Row);
    Vector const column(Dimensions(4, 1), 7.0);
    EXPECT_TRUE(sameBits(elementsOf(column), Values(4, 0.0)));
    EXPECT_EQ(column.orientation(), Column);
    Vector const empty(Dimensions(0, 0), 7.0);
    EXPECT_EQ(empty.length(), 0U);
    EXPECT_EQ(empty.orientation(), Column);
    EXPECT_EQ(Vector(Dimensions(3, 2), 7.0).size(), Dimensions(1, 3)) << "several columns make a row";
}

TEST(Vector, CopyIsDeepExactAndKeepsTheOrientation) {
    Vector source = rowOf(TestKit::specialValues());
    source.reserve(1000);
    Vector const copy(source);
    EXPECT_TRUE(sameBits(elementsOf(copy), elementsOf(source)));
    EXPECT_EQ(copy.orientation(), Row);
    EXPECT_NE(copy.data(), std::as_const(source).data());
    EXPECT_EQ(capacityOf(copy), copy.length());
}

TEST(Vector, MoveTakesTheDataObjectAndLeavesNone) {
    Vector source{1.0, 2.0};
    double const* const elements = source.data();
    AllocationCounter const counter;
    Vector const target(std::move(source));
    EXPECT_EQ(counter.count(), 0U);
    EXPECT_EQ(target.data(), elements);
    EXPECT_FALSE(LegacyAccess::hasData(source));
    static_assert(std::is_nothrow_move_constructible_v<Vector>);
    static_assert(std::is_nothrow_move_assignable_v<Vector>);
}

TEST(Vector, ImplicitlyComesFromBracedListsOnly) {
    static_assert(!std::is_convertible_v<std::size_t, Vector>);
    static_assert(!std::is_convertible_v<int, Vector>);
    static_assert(!std::is_convertible_v<double, Vector>);
    static_assert(!std::is_convertible_v<ViewVector, Vector>);
    static_assert(!std::is_convertible_v<OwnVector, Vector>);
    static_assert(std::is_constructible_v<Vector, std::size_t>);
    static_assert(std::is_constructible_v<Vector, ViewVector>);
    static_assert(!std::is_constructible_v<Vector, Dimensions>);
    EXPECT_EQ(Vector(0).length(), 0U) << "a length, not a null pointer";
    EXPECT_EQ(Vector(3, 5).length(), 3U) << "a length and a fill";
}

TEST(Vector, StorageLiesOnACacheLine) {
    for (std::size_t const n : {1U, 7U, 100U, 10'000U}) {
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(Vector(n).data()) % 64, 0U);
        Vector grown{1.0};
        grown.resize(n + 1);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(grown.data()) % 64, 0U);
    }
}

// --- assignment

TEST(Vector, CopyAssignmentReusesTheStorageAndTakesTheOrientation) {
    Vector target(10, 1.0);
    double const* const storage = target.data();
    Vector const source = rowOf({1.0, 2.0, 3.0});
    AllocationCounter const counter;
    EXPECT_EQ(&(target = source), &target);
    EXPECT_EQ(counter.count(), 0U);
    EXPECT_EQ(target.data(), storage);
    EXPECT_EQ(valuesOf(target), (Values{1.0, 2.0, 3.0}));
    EXPECT_EQ(target.orientation(), Row);
}

TEST(Vector, CopyAssignmentOfALongerVectorGrows) {
    Vector target(2, 1.0);
    Vector const source = counting(100);
    target = source;
    EXPECT_TRUE(sameBits(elementsOf(target), elementsOf(source)));
    Vector& alias = target;
    target = alias;
    EXPECT_TRUE(sameBits(elementsOf(target), elementsOf(source)));
}

TEST(Vector, MoveAssignmentTakesTheDataObject) {
    Vector target(10, 1.0);
    Vector source = rowOf({1.0, 2.0});
    double const* const elements = source.data();
    EXPECT_EQ(&(target = std::move(source)), &target);
    EXPECT_EQ(target.data(), elements);
    EXPECT_EQ(target.orientation(), Row);
    EXPECT_FALSE(LegacyAccess::hasData(source));
}

TEST(Vector, MovedFromMayBeAssignedEitherWay) {
    Vector v{1.0};
    Vector const taken(std::move(v));
    v = Vector{2.0, 3.0};
    EXPECT_EQ(valuesOf(v), (Values{2.0, 3.0}));
    Vector const takenAgain(std::move(v));
    v = taken;
    EXPECT_EQ(valuesOf(v), (Values{1.0}));
    EXPECT_EQ(takenAgain.length(), 2U);
}

TEST(Vector, AssignedToItselfStaysAsItIs) {
    Vector v{1.0, 2.0};
    Vector const& same = v;
    v = same;
    EXPECT_EQ(valuesOf(v), (Values{1.0, 2.0}));
    Vector const taken(std::move(v));
    v = same;
    EXPECT_FALSE(LegacyAccess::hasData(v));
    v = std::move(const_cast<Vector&>(same));
    EXPECT_FALSE(LegacyAccess::hasData(v));
    v = taken;
    EXPECT_EQ(valuesOf(v), (Values{1.0, 2.0}));
}

// --- access

TEST(Vector, ElementsAreReadAndWrittenByNumber) {
    Vector v{1.0, 2.0, 3.0};
    v[1] = 5.0;
    EXPECT_EQ(std::as_const(v)[1], 5.0);
    EXPECT_EQ(v.value(1), 5.0);
    EXPECT_EQ(&v.value(1), &v[1]);
    EXPECT_EQ(&v[2], v.data() + 2);
}

TEST(Vector, ElementsAreReadAndWrittenByIndexAlongTheOrientation) {
    Vector column{1.0, 2.0, 3.0};
    EXPECT_EQ(&column[Index(2, 0)], &column[2]);
    EXPECT_EQ(&column[Index(2, 9)], &column[2]) << "a column looks at the row only";
    Vector row = rowOf({1.0, 2.0, 3.0});
    EXPECT_EQ(&row[Index(0, 2)], &row[2]);
    EXPECT_EQ(&row[Index(9, 2)], &row[2]) << "a row looks at the column only";
    row[Index(0, 1)] = 7.0;
    EXPECT_EQ(std::as_const(row)[Index(0, 1)], 7.0);
    EXPECT_EQ(std::as_const(column)[Index(1, 0)], 2.0);
}

TEST(Vector, ShapeFollowsTheOrientation) {
    Vector const column(3);
    EXPECT_EQ(column.rows(), 3U);
    EXPECT_EQ(column.columns(), 1U);
    EXPECT_EQ(column.size(), Dimensions(3, 1));
    Vector const row = rowOf({1.0, 2.0, 3.0});
    EXPECT_EQ(row.rows(), 1U);
    EXPECT_EQ(row.columns(), 3U);
    EXPECT_EQ(row.size(), Dimensions(1, 3));
    EXPECT_EQ(row.length(), 3U);
}

TEST(Vector, AnyOtherOrientationIsOneByOneButAColumnInFull) {
    Values const source{1.0, 2.0, 3.0};
    Vector const v(ViewVector(source.data(), 1, static_cast<VectorOrientation>(5)));
    Vector longer = v;
    longer.resize(3, 2.0);
    EXPECT_EQ(longer.rows(), 1U);
    EXPECT_EQ(longer.columns(), 1U);
    EXPECT_EQ(longer.size(), Dimensions(3, 1));
    EXPECT_EQ(&longer[Index(9, 2)], &longer[2]);
}

TEST(Vector, IteratesOverItsElements) {
    Vector v{1.0, 2.0, 3.0};
    for (double& x : v)
        x *= 2.0;
    double total = 0.0;
    for (double const& x : std::as_const(v))
        total += x;
    EXPECT_EQ(total, 12.0);
    EXPECT_EQ(v.begin(), v.data());
    EXPECT_EQ(v.end(), v.data() + 3);
    EXPECT_EQ(std::as_const(v).begin(), v.data());
    EXPECT_EQ(std::as_const(v).end(), v.data() + 3);
}

// --- storage

TEST(Vector, ReserveMakesRoomForExactlyThatMany) {
    Vector v{1.0, 2.0};
    v.reserve(10);
    EXPECT_EQ(capacityOf(v), 10U);
    EXPECT_EQ(valuesOf(v), (Values{1.0, 2.0}));
    double const* const storage = v.data();
    v.reserve(5);
    EXPECT_EQ(capacityOf(v), 10U);
    EXPECT_EQ(v.data(), storage);
}

TEST(Vector, ResizeDropsTheTailAndKeepsTheStorage) {
    Vector v = counting(10);
    double const* const storage = v.data();
    {
        AllocationCounter const counter;
        v.resize(3);
        v.resize(5);
        v.resize(3);
        v.resize(6, 7.0);
        EXPECT_EQ(counter.count(), 0U);
    }
    EXPECT_EQ(valuesOf(v), (Values{0.0, 1.0, 2.0, 7.0, 7.0, 7.0}));
    EXPECT_EQ(v.data(), storage);
    EXPECT_EQ(capacityOf(v), 10U);
}

TEST(Vector, ResizeBeyondTheStorageKeepsElementsAndOrientation) {
    Vector v = rowOf({1.0, 2.0});
    v.resize(100, v[1]);
    EXPECT_EQ(v.length(), 100U);
    EXPECT_EQ(v[0], 1.0);
    EXPECT_EQ(v[99], 2.0) << "the fill may be an element";
    EXPECT_EQ(v.orientation(), Row);
    v.resize(101);
    EXPECT_EQ(v[100], 0.0);
}

class Endless : public OwnVector {
public:
    Endless() : OwnVector(1, 1, {1.0}) {}
    using OwnVector::operator[];
    std::size_t length() const override { return tooMany; }
};

TEST(Vector, RefusesMoreThanTheLargestLength) {
    std::string const text = "vector too long";
    double const x = 1.0;
    Vector v{1.0, 2.0};
    EXPECT_EQ(TestKit::lengthErrorOf([&] { Vector(tooMany, 0.0); }), text);
    EXPECT_EQ(TestKit::lengthErrorOf([&] { Vector{tooMany}; }), "no length error") << "a list of one number";
    EXPECT_EQ(TestKit::lengthErrorOf([&] { Vector const w(tooMany); }), text);
    EXPECT_EQ(TestKit::lengthErrorOf([&] { Vector(&x, tooMany); }), text);
    EXPECT_EQ(TestKit::lengthErrorOf([&] { Vector(Dimensions(tooMany, 1), 0.0); }), text);
    EXPECT_EQ(TestKit::lengthErrorOf([&] { Vector const w((Endless())); }), text);
    EXPECT_EQ(TestKit::lengthErrorOf([&] { v.reserve(tooMany); }), text);
    EXPECT_EQ(TestKit::lengthErrorOf([&] { v.resize(tooMany); }), text);
    EXPECT_EQ(TestKit::lengthErrorOf([&] { v.resize(static_cast<std::size_t>(-1)); }), text);
    EXPECT_EQ(valuesOf(v), (Values{1.0, 2.0})) << "as it was";
}

TEST(Vector, MissingMemoryThrowsAndReleasesWhatWasBuilt) {
    if (!TestKit::FailingAllocations::areSupported())
        GTEST_SKIP() << "this build's heap cannot be made to fail";
    Vector const large(100'000, 1.0);
    Vector small{1.0};
    TestKit::FailingAllocations const noLargeBlocks(100'000);
    EXPECT_THROW(Vector(100'000, 2.0), std::bad_alloc);
    EXPECT_THROW(Vector{large}, std::bad_alloc);
    EXPECT_THROW(small = large, std::bad_alloc);
    EXPECT_THROW(small.reserve(100'000), std::bad_alloc);
    EXPECT_EQ(valuesOf(small), (Values{1.0}));
}

// --- slices

TEST(Vector, SlicesAgreeWithTheRulesOnAnExhaustiveGrid) {
    std::vector<double> const values = TestKit::ordinaryValues(8);
    std::size_t const compared = TestKit::forEachSlice(
        8, [&](int start, int stop, int step, std::size_t n, std::vector<long> const& positions) {
            std::vector<double> expected;
            for (long const p : positions)
                expected.push_back(values[static_cast<std::size_t>(p)]);
            ASSERT_TRUE(TestKit::sameBits(
                TestKit::elementsOf(Vector(values.data(), n)[makeSlice(start, stop, step)]), expected))
                << "(" << start << ", " << stop << ", " << step << ") of " << n;
        });
    EXPECT_GT(compared, 10'000U);
}

struct SliceCase {
    int start;
    int stop;
    int step;
    Values expected;
};

TEST(Vector, SlicesSelectTheseElementsOfSix) {
    Vector const v = counting(6);
    for (SliceCase const& c : {
             SliceCase{0, 6, 1, {0, 1, 2, 3, 4, 5}},
             SliceCase{-2, 6, 1, {4, 5}},
             SliceCase{0, 100, 1, {0, 1, 2, 3, 4, 5}},
             SliceCase{4, 0, -1, {4, 3, 2, 1}},
             SliceCase{100, 0, -1, {5, 4, 3, 2, 1}},
             SliceCase{0, -100, 1, {0, 1, 2, 3, 4}},
             SliceCase{0, -1, 1, {0, 1, 2, 3, 4}},
             SliceCase{0, 5, 2, {0, 2}},
             SliceCase{5, 0, -2, {5, 3}},
             SliceCase{0, 6, 4, {0}},
             SliceCase{3, 3, 1, {}},
             SliceCase{4, 2, 1, {}},
             SliceCase{-100, 6, 1, {}},
         }) {
        SCOPED_TRACE(std::to_string(c.start) + ":" + std::to_string(c.stop) + ":" + std::to_string(c.step));
        EXPECT_EQ(valuesOf(v[makeSlice(c.start, c.stop, c.step)]), c.expected);
    }
}

TEST(Vector, SliceOfARowIsAColumn) {
    Vector const row = rowOf({1.0, 2.0, 3.0});
    Vector const slice = row[makeSlice(0, 3, 1)];
    EXPECT_EQ(slice.orientation(), Column);
    EXPECT_EQ(valuesOf(slice), valuesOf(row));
    EXPECT_NE(slice.data(), row.data());
}

TEST(Vector, SliceOfAnEmptyVectorIsEmpty) {
    EXPECT_EQ(Vector()[makeSlice(0, 5, 1)].length(), 0U);
}

TEST(Vector, SliceKeepsSpecialValues) {
    Values const source = TestKit::specialValues();
    Vector const v(source);
    EXPECT_TRUE(sameBits(elementsOf(v[makeSlice(0, static_cast<int>(source.size()), 1)]), source));
}

} // namespace

} // namespace Tervane::Math::LegacyTest

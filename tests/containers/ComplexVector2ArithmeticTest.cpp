#include "containers/Access.h"
#include "foundation/ElementwiseDispatch.h"
#include "kit/Allocations.h"
#include "kit/Bits.h"
#include "kit/Lengths.h"
#include "kit/Policies.h"
#include "kit/SpecialValues.h"

#include <Math/ComplexVector2.h>
#include <Math/Vector2.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

namespace Tervane::Math {

namespace {

using namespace TestKit;
using Values = std::vector<double>;

constexpr std::size_t limit = Detail::parallelLimit(Detail::ElementCost::Streaming);

ComplexVector2 make(Values const& parts, VectorOrientation orientation = Column) {
    ComplexVector2 z = Detail::ContainerAccess::uninitialisedComplex(parts.size() / 2, orientation);
    std::copy(parts.begin(), parts.end(), z.data());
    return z;
}

void expectResult(ComplexVector2 actual, Values const& expected, VectorOrientation orientation) {
    EXPECT_TRUE(sameBits(partsOf(actual), expected));
    EXPECT_EQ(actual.orientation(), orientation);
}

template<class Reference>
Values map(std::size_t n, Reference reference) {
    Values values(n);
    for (std::size_t k = 0; k < n; ++k)
        values[k] = reference(k);
    return values;
}

TEST(ComplexVector2Arithmetic, ScalesByARealScalarOnEitherSide) {
    for (std::size_t const n : awkwardLengthsAround(limit / 2)) {
        Values const parts = specialValues(2 * n);
        for (double const d : {0.1, -3.0, 0.0, static_cast<double>(INFINITY)}) {
            Values const product = map(2 * n, [&](std::size_t k) { return parts[k] * d; });
            Values const quotient = map(2 * n, [&](std::size_t k) { return parts[k] / d; });
            forEachPolicy([&] {
                ComplexVector2 const z = make(parts, Row);
                expectResult(z * d, product, Row);
                expectResult(d * z, product, Row);
                expectResult(make(parts, Row) * d, product, Row);
                expectResult(d * make(parts, Row), product, Row);
                expectResult(z / d, quotient, Row);
                expectResult(make(parts, Row) / d, quotient, Row);
                ComplexVector2 assigned = z;
                EXPECT_EQ(&(assigned *= d), &assigned);
                expectResult(assigned, product, Row);
                assigned = z;
                EXPECT_EQ(&(assigned /= d), &assigned);
                expectResult(assigned, quotient, Row);
            });
        }
    }
}

TEST(ComplexVector2Arithmetic, DividesTrulyAndNotByTheReciprocal) {
    // 5 / 3 and 5 * (1 / 3) differ in the last bit.
    ASSERT_NE(5.0 / 49.0, 5.0 * (1.0 / 49.0));
    expectResult(make({5, 5}) / 49.0, {5.0 / 49.0, 5.0 / 49.0}, Column);
}

TEST(ComplexVector2Arithmetic, MultipliesByARealVectorElementByElement) {
    for (std::size_t const n : awkwardLengthsAround(limit)) {
        Values const parts = specialValues(2 * n), factors = ordinaryValues(n);
        Values const expected = map(2 * n, [&](std::size_t k) { return parts[k] * factors[k / 2]; });
        forEachPolicy([&] {
            ComplexVector2 z = make(parts, Row);
            ComplexVector2 const& constant = z;
            Vector2 const v(factors.data(), n);
            expectResult(constant * v, expected, Row);
            expectResult(v * constant, expected, Row);
            expectResult(make(parts, Row) * v, expected, Row);
            expectResult(v * make(parts, Row), expected, Row);
            expectResult(z.view() * v, expected, Row);
            ComplexVector2 assigned = z;
            EXPECT_EQ(&(assigned *= v), &assigned);
            expectResult(assigned, expected, Row);
        });
    }
}

TEST(ComplexVector2Arithmetic, ReadsALongerRealVectorInPart) {
    Vector2 const longer(10, 3.0);
    expectResult(make({1, 2}) * longer, {3, 6}, Column);
}

TEST(ComplexVector2Arithmetic, MultipliesASliceOfAViewAsAColumn) {
    ComplexVector2 z = make({1, 2, 3, 4, 5, 6}, Row);
    EXPECT_EQ(z.view().orientation(), Row);
    ComplexVectorView2 slice = z.view().sliced(1, std::numeric_limits<std::size_t>::max());
    EXPECT_EQ(slice.orientation(), Column); // whatever the view was: callers rely on it
    expectResult(slice * Vector2(2, 2.0), {6, 8, 10, 12}, Column);
    EXPECT_EQ(z.size(), Dimensions(1, 3));
}

TEST(ComplexVector2Arithmetic, KeepsTheOrientationOfACopyAndOfAMove) {
    ComplexVector2 row = make({1, 2, 3, 4}, Row);
    ComplexVector2 copied(row), assigned, moved;
    assigned = row;
    EXPECT_EQ(copied.orientation(), Row);
    EXPECT_EQ(assigned.orientation(), Row);
    moved = std::move(row);
    EXPECT_EQ(moved.orientation(), Row);
    EXPECT_EQ(row.orientation(), Row);
    EXPECT_EQ(row.length(), 0u);
    ComplexVector2 constructed(std::move(moved));
    EXPECT_EQ(constructed.orientation(), Row);
    constructed = make({5, 6});
    EXPECT_EQ(constructed.orientation(), Column);
}

TEST(ComplexVector2Arithmetic, ReusesAnRvalueAndAllocatesAFreshResultOnce) {
    Values const parts = ordinaryValues(200);
    Vector2 const v(100, 2.0);
    auto const expectReuse = [&](auto const& operation) {
        ComplexVector2 z = make(parts);
        double const* const storage = z.data();
        AllocationCounter const counter;
        ComplexVector2 const result = operation(z);
        EXPECT_EQ(counter.count(), 0u);
        EXPECT_EQ(result.data(), storage);
        EXPECT_EQ(z.length(), 0u);
    };
    expectReuse([](ComplexVector2& z) { return std::move(z) * 2.0; });
    expectReuse([](ComplexVector2& z) { return 2.0 * std::move(z); });
    expectReuse([](ComplexVector2& z) { return std::move(z) / 2.0; });
    expectReuse([](ComplexVector2& z) { return 2.0 / std::move(z); });
    expectReuse([&](ComplexVector2& z) { return std::move(z) * v; });
    expectReuse([&](ComplexVector2& z) { return v * std::move(z); });
    auto const expectOne = [&](auto const& operation) {
        ComplexVector2 z = make(parts);
        AllocationCounter const counter;
        ComplexVector2 const result = operation(z);
        EXPECT_EQ(counter.count(), 1u);
        EXPECT_EQ(counter.bytes(), 1600u);
    };
    expectOne([](ComplexVector2 const& z) { return z * 2.0; });
    expectOne([](ComplexVector2 const& z) { return z / 2.0; });
    expectOne([](ComplexVector2 const& z) { return 2.0 / z; });
    expectOne([&](ComplexVector2 const& z) { return z * v; });
    expectOne([&](ComplexVector2& z) { return z.view() * v; });
}

struct Pair {
    double real;
    double imaginary;
};

/// The quotient d / (a, b), branch by branch.
Pair quotient(double d, double a, double b) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    if (std::isnan(a) || std::isnan(b))
        return {nan, nan};
    if (std::abs(a) > std::abs(b)) {
        double const r = b / a;
        double const den = r * b + a;
        if (std::isnan(den) || den == 0.0)
            return {nan, nan};
        return {(d + 0.0 * r) / den, (0.0 - d * r) / den};
    }
    if (b == 0.0)
        return {d / a, 0.0 / a};
    double const r = a / b;
    double const den = r * a + b;
    if (std::isnan(den) || den == 0.0)
        return {nan, nan};
    return {(d * r + 0.0) / den, (0.0 * r - d) / den};
}

testing::AssertionResult sameNumber(double actual, double expected) {
    if (std::isnan(expected) && std::isnan(actual))
        return testing::AssertionSuccess();
    return sameBits(actual, expected);
}

TEST(ScalarOverComplexVector2, FollowsTheSchemeOverAGridOfSpecialValues) {
    Values parts;
    for (double const a : specialValues())
        for (double const b : specialValues())
            parts.insert(parts.end(), {a, b});
    for (double const d : specialValues())
        forEachPolicy([&] {
            ComplexVector2 const z = make(parts, Row);
            ComplexVector2 const copied = d / z;
            ComplexVector2 const lent = d / make(parts, Row);
            for (std::size_t k = 0; k < parts.size(); k += 2) {
                Pair const expected = quotient(d, parts[k], parts[k + 1]);
                for (double const* const actual : {copied.data() + k, lent.data() + k}) {
                    ASSERT_TRUE(sameNumber(actual[0], expected.real))
                        << describe(d) << " / (" << describe(parts[k]) << ", " << describe(parts[k + 1])
                        << ")";
                    ASSERT_TRUE(sameNumber(actual[1], expected.imaginary))
                        << describe(d) << " / (" << describe(parts[k]) << ", " << describe(parts[k + 1])
                        << ")";
                }
            }
        });
}

TEST(ScalarOverComplexVector2, IsTheSameUnderEveryPolicyAtEveryLength) {
    for (std::size_t const n : awkwardLengthsAround(limit)) {
        Values const parts = ordinaryValues(2 * n);
        Values expected;
        for (std::size_t k = 0; k < 2 * n; k += 2) {
            Pair const q = quotient(3.0, parts[k], parts[k + 1]);
            expected.insert(expected.end(), {q.real, q.imaginary});
        }
        forEachPolicy([&] { expectResult(3.0 / make(parts), expected, Column); });
    }
}

TEST(ScalarOverComplexVector2, HandlesTheKnownCases) {
    expectResult(2.0 / make({1, 1}), {1, -1}, Column);
    ComplexVector2 const byZero = 1.0 / make({0, 0, -0.0, 0});
    EXPECT_EQ(byZero.data()[0], INFINITY);
    EXPECT_TRUE(std::isnan(byZero.data()[1]));
    EXPECT_EQ(byZero.data()[2], -INFINITY);
    ComplexVector2 const byNaN = 1.0 / make({std::nan(""), 0});
    EXPECT_TRUE(std::isnan(byNaN.data()[0]) && std::isnan(byNaN.data()[1]));
}

} // namespace

} // namespace Tervane::Math

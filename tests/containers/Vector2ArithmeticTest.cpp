#include "foundation/ElementwiseDispatch.h"
#include "kit/Allocations.h"
#include "kit/Bits.h"
#include "kit/Lengths.h"
#include "kit/Policies.h"
#include "kit/SpecialValues.h"

#include <Math/Vector2.h>
#include <Math/VectorView2.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace Tervane::Math {

namespace {

using namespace TestKit;
using Values = std::vector<double>;

constexpr std::size_t limit = Detail::parallelLimit(Detail::ElementCost::Streaming);

struct Plus {
    static double of(double a, double b) { return a + b; }
    template<class L, class R>
    Vector2 operator()(L&& l, R&& r) const {
        return std::forward<L>(l) + std::forward<R>(r);
    }
    template<class R>
    Vector2& assign(Vector2& v, R const& r) const {
        return v += r;
    }
};
struct Minus {
    static double of(double a, double b) { return a - b; }
    template<class L, class R>
    Vector2 operator()(L&& l, R&& r) const {
        return std::forward<L>(l) - std::forward<R>(r);
    }
    template<class R>
    Vector2& assign(Vector2& v, R const& r) const {
        return v -= r;
    }
};
struct Times {
    static double of(double a, double b) { return a * b; }
    template<class L, class R>
    Vector2 operator()(L&& l, R&& r) const {
        return std::forward<L>(l) * std::forward<R>(r);
    }
    template<class R>
    Vector2& assign(Vector2& v, R const& r) const {
        return v *= r;
    }
};
struct Over {
    static double of(double a, double b) { return a / b; }
    template<class L, class R>
    Vector2 operator()(L&& l, R&& r) const {
        return std::forward<L>(l) / std::forward<R>(r);
    }
    template<class R>
    Vector2& assign(Vector2& v, R const& r) const {
        return v /= r;
    }
};

Vector2 column(Values const& values) {
    return Vector2(values.data(), values.size());
}
Vector2 row(Values const& values) {
    return Vector2(VectorView2(values.data(), values.size(), Row));
}

/// Values for a second operand: of two NaNs either payload may survive, so there are none.
Values withoutNaNs(Values values) {
    for (double& x : values)
        if (std::isnan(x))
            x = -3.0;
    return values;
}

template<class Reference>
Values map(std::size_t n, Reference reference) {
    Values values(n);
    for (std::size_t k = 0; k < n; ++k)
        values[k] = reference(k);
    return values;
}

void expectResult(Vector2 actual, Values const& expected, VectorOrientation orientation) {
    EXPECT_TRUE(sameBits(elementsOf(actual), expected));
    EXPECT_EQ(actual.orientation(), orientation);
}

template<class Op>
class Vector2Operator : public testing::Test {};

struct OpNames {
    template<class Op>
    static std::string GetName(int) {
        return std::is_same_v<Op, Plus>    ? "Plus"
               : std::is_same_v<Op, Minus> ? "Minus"
               : std::is_same_v<Op, Times> ? "Times"
                                           : "Over";
    }
};
using Ops = testing::Types<Plus, Minus, Times, Over>;
TYPED_TEST_SUITE(Vector2Operator, Ops, OpNames);

TYPED_TEST(Vector2Operator, OfTwoVectorsIsTheSameUnderEveryPolicyBitForBit) {
    TypeParam const op;
    for (std::size_t const n : awkwardLengthsAround(limit)) {
        SCOPED_TRACE(n);
        Values const a = specialValues(n), b = withoutNaNs(specialValues(n, 7));
        Values const expected = map(n, [&](std::size_t k) { return TypeParam::of(a[k], b[k]); });
        forEachPolicy([&] {
            Vector2 const left = row(a), right = column(b);
            expectResult(op(left, right), expected, Row);
            expectResult(op(row(a), right), expected, Row);
            expectResult(op(row(a), column(b)), expected, Row);
            VectorView2 const view(b.data(), n, Column);
            expectResult(op(left, view), expected, Row);
            expectResult(op(row(a), view), expected, Row);
            Vector2 assigned = left;
            EXPECT_EQ(&op.assign(assigned, right), &assigned);
            expectResult(assigned, expected, Row);
            assigned = left;
            EXPECT_EQ(&op.assign(assigned, view), &assigned);
            expectResult(assigned, expected, Row);
        });
    }
}

TYPED_TEST(Vector2Operator, WithAViewOnTheLeftTakesTheShapeOfTheVector) {
    TypeParam const op;
    for (std::size_t const n : awkwardLengthsAround(limit)) {
        SCOPED_TRACE(n);
        Values const a = specialValues(n), b = withoutNaNs(specialValues(n, 7));
        Values const expected = map(n, [&](std::size_t k) { return TypeParam::of(a[k], b[k]); });
        forEachPolicy([&] {
            VectorView2 const view(a.data(), n, Column);
            Vector2 const right = row(b);
            expectResult(op(view, right), expected, Row);
        });
    }
}

TYPED_TEST(Vector2Operator, WithALongerViewOnTheLeftHasTheLengthOfTheVector) {
    TypeParam const op;
    Values const a(10, 6.0);
    Vector2 const right = row({2, 2, 2});
    expectResult(op(VectorView2(a.data(), 10, Column), right), Values(3, TypeParam::of(6.0, 2.0)), Row);
}

TYPED_TEST(Vector2Operator, WithAScalarIsTheSameUnderEveryPolicyBitForBit) {
    TypeParam const op;
    for (std::size_t const n : awkwardLengthsAround(limit)) {
        SCOPED_TRACE(n);
        Values const a = specialValues(n);
        for (double const scalar : {0.1, -3.0, 0.0, -0.0, 1e308, static_cast<double>(INFINITY)}) {
            Values const right = map(n, [&](std::size_t k) { return TypeParam::of(a[k], scalar); });
            Values const left = map(n, [&](std::size_t k) { return TypeParam::of(scalar, a[k]); });
            forEachPolicy([&] {
                Vector2 const v = row(a);
                expectResult(op(v, scalar), right, Row);
                expectResult(op(row(a), scalar), right, Row);
                expectResult(op(scalar, v), left, Row);
                Vector2 assigned = v;
                EXPECT_EQ(&op.assign(assigned, scalar), &assigned);
                expectResult(assigned, right, Row);
            });
        }
    }
}

TYPED_TEST(Vector2Operator, ConvertsAnIntegerToDouble) {
    TypeParam const op;
    Values const a = ordinaryValues(37);
    for (int const scalar : {3, -7, 0, 2147483647, -2147483647 - 1}) {
        Values const right = map(37, [&](std::size_t k) { return TypeParam::of(a[k], scalar); });
        Values const left = map(37, [&](std::size_t k) { return TypeParam::of(scalar, a[k]); });
        forEachPolicy([&] {
            Vector2 const v = row(a);
            expectResult(op(v, scalar), right, Row);
            expectResult(op(row(a), scalar), right, Row);
            expectResult(op(scalar, v), left, Row);
            Vector2 assigned = v;
            EXPECT_EQ(&op.assign(assigned, scalar), &assigned);
            expectResult(assigned, right, Row);
        });
    }
}

TYPED_TEST(Vector2Operator, CombinesEverySpecialValueWithEveryOther) {
    TypeParam const op;
    Values const all = specialValues();
    for (double const x : all) {
        Values const left(all.size(), x);
        Values const right = std::isnan(x) ? withoutNaNs(all) : all;
        Values const expected = map(all.size(), [&](std::size_t k) { return TypeParam::of(x, right[k]); });
        forEachPolicy([&] { expectResult(op(column(left), column(right)), expected, Column); });
    }
}

TYPED_TEST(Vector2Operator, ReusesALeftRvalueAndAllocatesNothing) {
    TypeParam const op;
    Vector2 const right(100, 2.0);
    VectorView2 const view(right.data(), 100, Column);
    auto const expectReuse = [&](auto const& other) {
        Vector2 left(100, 3.0);
        double const* const storage = left.data();
        AllocationCounter const counter;
        Vector2 const result = op(std::move(left), other);
        EXPECT_EQ(counter.count(), 0u);
        EXPECT_EQ(result.data(), storage);
        EXPECT_EQ(left.length(), 0u);
        EXPECT_EQ(left.data(), nullptr);
    };
    expectReuse(right);
    expectReuse(view);
    expectReuse(2.0);
    expectReuse(2);
    Vector2 left(100, 3.0), other(100, 2.0);
    double const* const storage = left.data();
    Vector2 const result = op(std::move(left), std::move(other));
    EXPECT_EQ(result.data(), storage);
    EXPECT_EQ(other.length(), 100u); // only read
}

TYPED_TEST(Vector2Operator, AllocatesAFreshResultOnceAndExactly) {
    TypeParam const op;
    Vector2 left(1000, 3.0);
    left.reserve(5000);
    Vector2 const& constLeft = left;
    Vector2 const right(1000, 2.0);
    std::size_t bytesOfOneVector = 0;
    {
        AllocationCounter const counter;
        Vector2 const one(1000);
        bytesOfOneVector = counter.bytes();
        ASSERT_EQ(counter.count(), 1u);
    }
    auto const expectOne = [&](auto const& makeResult) {
        AllocationCounter const counter;
        Vector2 const result = makeResult();
        EXPECT_EQ(counter.count(), 1u);
        EXPECT_EQ(counter.bytes(), bytesOfOneVector);
    };
    expectOne([&] { return op(constLeft, right); });
    expectOne([&] { return op(constLeft, VectorView2(right.data(), 1000, Column)); });
    expectOne([&] { return op(VectorView2(right.data(), 1000, Column), constLeft); });
    expectOne([&] { return op(constLeft, 2.0); });
    expectOne([&] { return op(constLeft, 2); });
    expectOne([&] { return op(2.0, constLeft); });
    expectOne([&] { return op(2, constLeft); });
}

TYPED_TEST(Vector2Operator, TakesAScalarThatIsAnElementOfTheVector) {
    TypeParam const op;
    Values const a = ordinaryValues(40);
    forEachPolicy([&] {
        Vector2 v = column(a);
        op.assign(v, v[0]);
        expectResult(v, map(40, [&](std::size_t k) { return TypeParam::of(a[k], a[0]); }), Column);
    });
}

TYPED_TEST(Vector2Operator, WalksTheReceiversLengthAndReadsALongerOperandInPart) {
    TypeParam const op;
    Vector2 const left(3, 6.0), longer(10, 2.0);
    expectResult(op(left, longer), Values(3, TypeParam::of(6.0, 2.0)), Column);
    Vector2 assigned = left;
    op.assign(assigned, longer);
    expectResult(assigned, Values(3, TypeParam::of(6.0, 2.0)), Column);
}

TEST(Vector2Arithmetic, LetsARightRvalueReceiveSumAndProduct) {
    Values const a = ordinaryValues(50, 1), b = ordinaryValues(50, 2);
    forEachPolicy([&] {
        Vector2 const left = column(a);
        VectorView2 const view(a.data(), 50, Column);
        auto const expectReuse = [&](auto const& operation, double (*reference)(double, double)) {
            Vector2 right = row(b);
            double const* const storage = right.data();
            AllocationCounter const counter;
            Vector2 result = operation(right);
            EXPECT_EQ(counter.count(), 0u);
            EXPECT_EQ(result.data(), storage);
            EXPECT_EQ(right.length(), 0u);
            expectResult(std::move(result), map(50, [&](std::size_t k) { return reference(a[k], b[k]); }),
                         Row);
        };
        expectReuse([&](Vector2& right) { return left + std::move(right); }, Plus::of);
        expectReuse([&](Vector2& right) { return left * std::move(right); }, Times::of);
        expectReuse([&](Vector2& right) { return view + std::move(right); }, Plus::of);
        expectReuse([&](Vector2& right) { return view * std::move(right); }, Times::of);
        auto const scalarReference = [&](auto reference) {
            return map(50, reference);
        };
        Vector2 right = row(b);
        double const* const storage = right.data();
        Vector2 sum = 3.0 + std::move(right);
        EXPECT_EQ(sum.data(), storage);
        expectResult(sum, scalarReference([&](std::size_t k) { return 3.0 + b[k]; }), Row);
        expectResult(3 * row(b), scalarReference([&](std::size_t k) { return 3.0 * b[k]; }), Row);
        expectResult(3 + row(b), scalarReference([&](std::size_t k) { return 3.0 + b[k]; }), Row);
        expectResult(3.0 * row(b), scalarReference([&](std::size_t k) { return 3.0 * b[k]; }), Row);
    });
}

/// left - std::move(right): the argument afterwards, and the result, in the right operand's shape.
template<class Left>
void expectNegateThenAdd(Left const& left, Values const& leftValues, Values const& right) {
    forEachPolicy([&] {
        Vector2 argument = row(right);
        double const* const storage = argument.data();
        Vector2 result = left - std::move(argument);
        expectResult(result, map(right.size(), [&](std::size_t k) { return leftValues[k] - right[k]; }), Row);
        EXPECT_EQ(argument.data(), storage);
        expectResult(argument, map(right.size(), [&](std::size_t k) { return -right[k]; }), Row);
        EXPECT_NE(result.data(), storage);
    });
}

TEST(Vector2Arithmetic, MinusWithARightRvalueLeavesTheArgumentNegatedAndReturnsANewVector) {
    Values const a = ordinaryValues(50, 1), b = ordinaryValues(50, 2);
    expectNegateThenAdd(column(a), a, b);
    expectNegateThenAdd(VectorView2(a.data(), 50, Column), a, b);
    expectNegateThenAdd(2.5, Values(50, 2.5), b);
    expectNegateThenAdd(-7, Values(50, -7.0), b);
    Vector2 const five(2, 5.0);
    double const oneTwo[] = {1, 2};
    Vector2 argument(oneTwo, 2);
    expectResult(five - std::move(argument), {4, 3}, Column);
    expectResult(argument, {-1, -2}, Column);
}

TEST(Vector2Arithmetic, MinusWithARightRvalueAddsTheNegationSoThatEqualOperandsGivePositiveZero) {
    Vector2 const left(1, 2.0);
    EXPECT_TRUE(sameBits((left - Vector2(1, 2.0))[0], 0.0));
    Vector2 const negativeZero(1, -0.0);
    // -(-0.0) + -0.0 is 0.0
    EXPECT_TRUE(sameBits((negativeZero - Vector2(1, -0.0))[0], 0.0));
}

TEST(Vector2Arithmetic, MinusWithARightRvalueTakesTheLengthOfTheRightOperand) {
    Vector2 const left(10, 5.0);
    expectResult(left - Vector2(3, 1.0), Values(3, 4.0), Column);
}

TEST(Vector2Arithmetic, MinusOfAVectorAndItselfAsARightRvalueAddsTheNegationTwice) {
    // The left operand is read after the right one has been negated.
    Vector2 v = row({1, -2, 3});
    expectResult(std::as_const(v) - std::move(v), {-2, 4, -6}, Row);
    expectResult(v, {-1, 2, -3}, Row);
    Vector2 w = row({1, -2, 3});
    expectResult(VectorView2(w.data(), 3, Column) - std::move(w), {-2, 4, -6}, Row);
}

TEST(Vector2Arithmetic, MinusWithARightRvalueTakesAScalarThatIsOneOfItsElements) {
    Vector2 v(4, 3.0);
    double const& scalar = v[0];
    expectResult(scalar - std::move(v), Values(4, 0.0), Column);
}

TEST(Vector2Arithmetic, DivisionWithARightRvalueWalksTheLeftOperandAndKeepsTheRightOnesStorage) {
    forEachPolicy([] {
        Values const a = {10, 20, 30}, b = {2, 4, 5, 6, 7};
        Vector2 const left = column(a);
        VectorView2 const view(a.data(), 3, Column);
        Vector2 right = row(b);
        double const* storage = right.data();
        Vector2 result = left / std::move(right);
        EXPECT_EQ(result.data(), storage);
        EXPECT_EQ(right.length(), 0u);
        expectResult(result, {5, 5, 6, 6, 7}, Row); // the tail keeps the right operand's values
        right = row(b);
        storage = right.data();
        result = view / std::move(right);
        EXPECT_EQ(result.data(), storage);
        expectResult(result, {5, 5, 6, 6, 7}, Row);
    });
    for (std::size_t const n : awkwardLengthsAround(limit)) {
        Values const a = specialValues(n), b = withoutNaNs(specialValues(n, 7));
        Values const expected = map(n, [&](std::size_t k) { return a[k] / b[k]; });
        forEachPolicy([&] {
            expectResult(std::as_const(static_cast<Vector2 const&>(column(a))) / row(b), expected, Row);
        });
    }
}

TEST(Vector2Arithmetic, DivisionWithARightRvalueWritesBeyondItsEndWhenTheLeftOperandIsLonger) {
    forEachPolicy([] {
        Vector2 const left = column({10, 20, 30, 40, 50});
        Vector2 right = row({2, 4, 5, 8, 10});
        ASSERT_TRUE(right.resize(3).has_value()); // the storage still holds all five
        Vector2 result = left / std::move(right);
        EXPECT_EQ(result.orientation(), Row);
        ASSERT_EQ(result.length(), 3u);
        EXPECT_TRUE(sameBits(std::span(std::as_const(result).data(), 5), Values{5, 5, 6, 5, 5}));
    });
}

TEST(Vector2Arithmetic, ScalarOverARightRvalueWorksInPlace) {
    forEachPolicy([] {
        Vector2 right = row({2, 4});
        double const* const storage = right.data();
        AllocationCounter const counter;
        Vector2 result = 1 / std::move(right);
        EXPECT_EQ(counter.count(), 0u);
        EXPECT_EQ(result.data(), storage);
        EXPECT_EQ(right.length(), 0u);
        expectResult(result, {0.5, 0.25}, Row);
        expectResult(1.0 / row({2, 4, 0, -0.0}), {0.5, 0.25, INFINITY, -INFINITY}, Row);
    });
}

TEST(Vector2Arithmetic, DividesByAnUnsignedLength) {
    std::size_t const three = 3, huge = static_cast<std::size_t>(-1);
    forEachPolicy([&] {
        Vector2 const v = row({6, 9});
        expectResult(v / three, {2, 3}, Row);
        expectResult(v / 3, {2, 3}, Row);
        expectResult(v / huge, {6 / 18446744073709551616.0, 9 / 18446744073709551616.0}, Row);
        Vector2 lent = v;
        double const* const storage = lent.data();
        Vector2 const result = std::move(lent) / three;
        EXPECT_EQ(result.data(), storage);
        Vector2 assigned = v;
        EXPECT_EQ(&(assigned /= three), &assigned);
        expectResult(assigned, {2, 3}, Row);
    });
}

TEST(Vector2Arithmetic, SubtractsBetweenAViewAndAScalarOnly) {
    for (std::size_t const n : awkwardLengthsAround(limit)) {
        Values const a = specialValues(n);
        forEachPolicy([&] {
            VectorView2 const view(a.data(), n, Row);
            expectResult(view - 2.5, map(n, [&](std::size_t k) { return a[k] - 2.5; }), Row);
            expectResult(view - 3, map(n, [&](std::size_t k) { return a[k] - 3.0; }), Row);
            expectResult(2.5 - view, map(n, [&](std::size_t k) { return 2.5 - a[k]; }), Row);
            expectResult(3 - view, map(n, [&](std::size_t k) { return 3.0 - a[k]; }), Row);
        });
    }
}

TEST(Vector2Arithmetic, NegatesByTheSignBitAlone) {
    for (std::size_t const n : awkwardLengthsAround(limit)) {
        Values const a = specialValues(n);
        Values const expected =
            map(n, [&](std::size_t k) { return fromBits(bitsOf(a[k]) ^ 0x8000000000000000); });
        forEachPolicy([&] {
            Vector2 const constant = row(a);
            expectResult(-constant, expected, Row);
            Vector2 v = row(a);
            double const* const storage = v.data();
            Vector2& negated = -std::move(v);
            EXPECT_EQ(&negated, &v);
            EXPECT_EQ(v.data(), storage);
            expectResult(v, expected, Row);
        });
    }
}

TEST(Vector2Arithmetic, TakesTheOrientationOfTheVectorThatReceivesTheResult) {
    Values const a = {1, 2};
    Vector2 const r = row(a), c = column(a);
    EXPECT_EQ((r + c).orientation(), Row);
    EXPECT_EQ((c + r).orientation(), Column);
    EXPECT_EQ((c + row(a)).orientation(), Row);
    EXPECT_EQ((column(a) + row(a)).orientation(), Column);
    EXPECT_EQ((c - row(a)).orientation(), Row);
    EXPECT_EQ((VectorView2(a.data(), 2, Row) * c).orientation(), Column);
}

TEST(Vector2Arithmetic, AllocatesOnceForAChainOfSums) {
    Vector2 const a(1000, 1.0), b(1000, 2.0), c(1000, 3.0);
    AllocationCounter const counter;
    Vector2 const sum = a + b + c;
    EXPECT_EQ(counter.count(), 1u);
    EXPECT_EQ(sum[999], 6.0);
}

TEST(Vector2Arithmetic, KeepsTheOrderWhereAViewOverlapsTheVectorPartly) {
    // Fifteen elements left of sixteen: the view sees those that are not yet overwritten.
    PolicyScope const scope(Inline);
    Values const a = ordinaryValues(16);
    Vector2 v = column(a);
    VectorView2 const shifted(v.data() + 1, 15, Column);
    ASSERT_TRUE(v.resize(15).has_value());
    v += shifted;
    expectResult(v, map(15, [&](std::size_t k) { return a[k] + a[k + 1]; }), Column);
}

} // namespace

} // namespace Tervane::Math

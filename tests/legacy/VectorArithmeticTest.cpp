#include "foundation/ElementwiseDispatch.h"
#include "kit/Allocations.h"
#include "kit/Bits.h"
#include "kit/Lengths.h"
#include "kit/Policies.h"
#include "kit/SpecialValues.h"
#include "legacy/Access.h"
#include "legacy/Tables.h"

#include <Math/Vector.h>
#include <Math/ViewVector.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace Tervane::Math::LegacyTest {

namespace {

using ::operator+;
using ::operator-;
using Detail::LegacyAccess;
using TestKit::AllocationCounter;
using TestKit::elementsOf;
using TestKit::forEachPolicy;
using TestKit::sameBits;

using Values = std::vector<double>;

Values valuesOf(Vector const& v) {
    return Values(v.begin(), v.end());
}

double plus(double a, double b) {
    return a + b;
}
double minus(double a, double b) {
    return a - b;
}
double times(double a, double b) {
    return a * b;
}
double over(double a, double b) {
    return a / b;
}

/// One operator on two vectors or a vector and a scalar, with what it computes per element.
template<class A, class B>
struct Form {
    char const* name;
    Vector (*apply)(A, B);
    double (*reference)(double, double);
};

// The two operands in all three forms that callers may write, and the fourth of the product.
constexpr Form<Vector&, Vector&> vectorForms[] = {
    {"a&& + b", [](Vector& a, Vector& b) { return std::move(a) + std::as_const(b); }, plus},
    {"a&& + b&&", [](Vector& a, Vector& b) { return std::move(a) + std::move(b); }, plus},
    {"a + b&&", [](Vector& a, Vector& b) { return std::as_const(a) + std::move(b); }, plus},
    {"a&& - b", [](Vector& a, Vector& b) { return std::move(a) - std::as_const(b); }, minus},
    {"a&& - b&&", [](Vector& a, Vector& b) { return std::move(a) - std::move(b); }, minus},
    {"a - b&&", [](Vector& a, Vector& b) { return std::as_const(a) - std::move(b); }, minus},
    {"a&& * b", [](Vector& a, Vector& b) { return std::move(a) * std::as_const(b); }, times},
    {"a&& * b&&", [](Vector& a, Vector& b) { return std::move(a) * std::move(b); }, times},
    {"a * b&&", [](Vector& a, Vector& b) { return std::as_const(a) * std::move(b); }, times},
    {"a * b", [](Vector& a, Vector& b) { return std::as_const(a) * std::as_const(b); }, times},
};

constexpr Form<Vector&, double const&> rightScalarForms[] = {
    {"v&& + s", [](Vector& v, double const& s) { return std::move(v) + s; }, plus},
    {"v + s", [](Vector& v, double const& s) { return std::as_const(v) + s; }, plus},
    {"v&& - s", [](Vector& v, double const& s) { return std::move(v) - s; }, minus},
    {"v - s", [](Vector& v, double const& s) { return std::as_const(v) - s; }, minus},
    {"v&& * s", [](Vector& v, double const& s) { return std::move(v) * s; }, times},
    {"v * s", [](Vector& v, double const& s) { return std::as_const(v) * s; }, times},
    {"v&& / s", [](Vector& v, double const& s) { return std::move(v) / s; }, over},
    {"v / s", [](Vector& v, double const& s) { return std::as_const(v) / s; }, over},
};

constexpr Form<double const&, Vector&> leftScalarForms[] = {
    {"s + v&&", [](double const& s, Vector& v) { return s + std::move(v); }, plus},
    {"s + v", [](double const& s, Vector& v) { return s + std::as_const(v); }, plus},
    {"s - v&&", [](double const& s, Vector& v) { return s - std::move(v); }, minus},
    {"s - v", [](double const& s, Vector& v) { return s - std::as_const(v); }, minus},
    {"s * v&&", [](double const& s, Vector& v) { return s * std::move(v); }, times},
    {"s * v", [](double const& s, Vector& v) { return s * std::as_const(v); }, times},
};

std::vector<std::size_t> lengths() {
    return TestKit::awkwardLengthsAround(Detail::parallelLimit(Detail::ElementCost::Streaming));
}

/// Whether a range is too short for the parallel runtime, which allocates for itself when it is first used.
bool staysOnTheCallingThread(std::size_t n) {
    return n < Detail::parallelLimit(Detail::ElementCost::Streaming);
}

/// Special values for a second operand, but an ordinary one wherever the first is a NaN: of two NaNs, which
/// payload survives is the compiler's choice.
Values besides(Values const& first) {
    Values second = TestKit::specialValues(first.size(), 5);
    for (std::size_t i = 0; i < first.size(); ++i)
        if (std::isnan(first[i]) && std::isnan(second[i]))
            second[i] = 1.5;
    return second;
}

bool isRightRvalueOnly(std::string const& name) {
    return name.starts_with("a ") && name.ends_with("b&&");
}

TEST(VectorArithmetic, OfTwoVectorsIsTheSameUnderEveryPolicyBitForBit) {
    for (std::size_t const n : lengths()) {
        SCOPED_TRACE(n);
        Values const x = TestKit::specialValues(n);
        Values const y = besides(x);
        Vector const a = rowOf(x);
        Vector const b(y);
        for (auto const& form : vectorForms) {
            SCOPED_TRACE(form.name);
            Values expected(n);
            for (std::size_t i = 0; i < n; ++i)
                expected[i] = form.reference(x[i], y[i]);
            forEachPolicy([&] {
                Vector left(a);
                Vector right(b);
                Vector const result = form.apply(left, right);
                EXPECT_TRUE(sameBits(elementsOf(result), expected));
                EXPECT_EQ(result.orientation(), isRightRvalueOnly(form.name) ? Column : Row)
                    << "of the operand that lent its storage, or was copied";
            });
        }
    }
}

TEST(VectorArithmetic, OfVectorAndScalarIsTheSameUnderEveryPolicyBitForBit) {
    for (std::size_t const n : lengths()) {
        SCOPED_TRACE(n);
        Values const x = TestKit::specialValues(n);
        Vector const original = rowOf(x);
        for (double const s : {0.1, -0.0, 3.0}) {
            for (auto const& form : rightScalarForms) {
                SCOPED_TRACE(form.name);
                Values expected(n);
                for (std::size_t i = 0; i < n; ++i)
                    expected[i] = form.reference(x[i], s);
                forEachPolicy([&] {
                    Vector v(original);
                    Vector const result = form.apply(v, s);
                    EXPECT_TRUE(sameBits(elementsOf(result), expected));
                    EXPECT_EQ(result.orientation(), Row);
                });
            }
            for (auto const& form : leftScalarForms) {
                SCOPED_TRACE(form.name);
                Values expected(n);
                for (std::size_t i = 0; i < n; ++i)
                    expected[i] = form.reference(s, x[i]);
                forEachPolicy([&] {
                    Vector v(original);
                    Vector const result = form.apply(s, v);
                    EXPECT_TRUE(sameBits(elementsOf(result), expected));
                    EXPECT_EQ(result.orientation(), Row);
                });
            }
        }
    }
}

TEST(VectorArithmetic, TakesEverySpecialScalar) {
    Values const x = TestKit::ordinaryValues(17);
    for (double const s : TestKit::specialValues()) {
        Vector v(x);
        for (std::size_t f = 0; f < std::size(rightScalarForms); f += 2) { // the rvalue forms
            Values expected(x.size());
            for (std::size_t i = 0; i < x.size(); ++i)
                expected[i] = rightScalarForms[f].reference(x[i], s);
            v = Vector(x);
            EXPECT_TRUE(sameBits(elementsOf(rightScalarForms[f].apply(v, s)), expected))
                << rightScalarForms[f].name << ' ' << s;
        }
    }
}

// --- storage

TEST(VectorArithmetic, AnRvalueOperandLendsItsStorageAndKeepsNoData) {
    for (auto const& form : vectorForms) {
        SCOPED_TRACE(form.name);
        std::string const name = form.name;
        Vector a(100, 1.0);
        Vector b(100, 2.0);
        double const* const storageOfA = a.data();
        double const* const storageOfB = b.data();
        if (name == "a * b") {
            Vector const result = form.apply(a, b);
            EXPECT_TRUE(LegacyAccess::hasData(a) && LegacyAccess::hasData(b));
            EXPECT_NE(result.data(), storageOfA);
            continue;
        }
        AllocationCounter const counter;
        Vector const result = form.apply(a, b);
        EXPECT_EQ(counter.count(), 0U);
        bool const inB = isRightRvalueOnly(name);
        EXPECT_EQ(result.data(), inB ? storageOfB : storageOfA);
        EXPECT_EQ(LegacyAccess::hasData(a), inB);
        EXPECT_EQ(LegacyAccess::hasData(b), !inB);
    }
}

TEST(VectorArithmetic, AScalarFormReusesAnRvalueAndCopiesANamedVector) {
    auto const check = [](std::string const& name, auto const& apply) {
        SCOPED_TRACE(name);
        Vector v(100, 1.0);
        double const* const storage = v.data();
        bool const reuses = name.find("&&") != std::string::npos && name != "s * v&&";
        AllocationCounter const counter;
        Vector const result = apply(v);
        EXPECT_EQ(counter.count() == 0, reuses);
        EXPECT_EQ(result.data() == storage, reuses);
        EXPECT_EQ(LegacyAccess::hasData(v), !reuses);
    };
    for (auto const& form : rightScalarForms)
        check(form.name, [&](Vector& v) { return form.apply(v, 2.0); });
    for (auto const& form : leftScalarForms)
        check(form.name, [&](Vector& v) { return form.apply(2.0, v); });
}

TEST(VectorArithmetic, ScalarTimesRvalueCopiesAndLeavesTheArgument) {
    Vector v{1.0, 2.0};
    Vector const result = 3.0 * std::move(v);
    EXPECT_EQ(valuesOf(result), (Values{3.0, 6.0}));
    ASSERT_TRUE(LegacyAccess::hasData(v));
    EXPECT_EQ(valuesOf(v), (Values{1.0, 2.0}));
}

TEST(VectorArithmetic, AFreshResultCostsWhatACopyDoes) {
    Vector const v(100, 1.0);
    std::size_t copyCount = 0;
    std::size_t copyBytes = 0;
    {
        AllocationCounter const counter;
        Vector const copy(v);
        copyCount = counter.count();
        copyBytes = counter.bytes();
    }
    AllocationCounter const counter;
    Vector const product = v * v;
    EXPECT_EQ(counter.count(), copyCount);
    EXPECT_EQ(counter.bytes(), copyBytes);
    EXPECT_EQ(LegacyAccess::elements(product).capacity(), 100U);
}

TEST(VectorArithmetic, AChainAllocatesOnce) {
    Vector const a(100, 1.0);
    Vector const b(100, 2.0);
    std::size_t single = 0;
    {
        AllocationCounter const counter;
        Vector const copy(a);
        single = counter.count();
    }
    AllocationCounter const counter;
    Vector const result = ((a * b + b - a) * 2.0 + 1.0 - b) / 2.0;
    EXPECT_EQ(counter.count(), single);
    EXPECT_EQ(result[99], 2.5);
}

TEST(VectorArithmetic, AScalarMayBeAnElementOfTheVector) {
    forEachPolicy([] {
        Vector v{2.0, 3.0, 4.0};
        EXPECT_EQ(valuesOf(v * v[0]), (Values{4.0, 6.0, 8.0}));
        double const& element = v[0];
        Vector const difference = std::move(v) - element;
        EXPECT_EQ(valuesOf(difference), (Values{0.0, 1.0, 2.0}));
        Vector w{2.0, 3.0, 4.0};
        double const& divisor = w[0];
        EXPECT_EQ(valuesOf(std::move(w) / divisor), (Values{1.0, 1.5, 2.0}));
    });
}

TEST(VectorArithmetic, BothOperandsMayBeTheSameVector) {
    forEachPolicy([] {
        for (std::size_t const n : {3U, 100U}) {
            Vector v(n, 3.0);
            Vector const& same = v;
            Vector sum = std::move(v) + same;
            EXPECT_EQ(valuesOf(sum), Values(n, 6.0));
            Vector const& itself = sum;
            sum -= itself;
            EXPECT_EQ(valuesOf(sum), Values(n, 0.0));
        }
    });
}

// --- lengths

TEST(VectorArithmetic, TheLengthIsThatOfTheWalkedOperand) {
    forEachPolicy([] {
        Vector const longer{10.0, 20.0, 30.0};
        EXPECT_EQ(valuesOf(Vector{1.0, 2.0} + longer), (Values{11.0, 22.0}));
        EXPECT_EQ(valuesOf(longer + Vector{1.0, 2.0}), (Values{11.0, 22.0}));
        EXPECT_EQ(valuesOf(Vector{1.0, 2.0} - longer), (Values{-9.0, -18.0}));
        EXPECT_EQ(valuesOf(Vector{1.0, 2.0} * longer), (Values{10.0, 40.0}));
        Vector const shorter{1.0, 2.0};
        EXPECT_EQ(valuesOf(shorter * longer), (Values{10.0, 40.0}));
    });
}

TEST(VectorArithmetic, MinusWithOnlyARightRvalueWalksTheLeftAndLeavesTheTailOfTheRight) {
    forEachPolicy([] {
        Vector const shorter = rowOf({1.0, 2.0});
        Vector b{10.0, 20.0, 30.0};
        Vector const result = shorter - std::move(b);
        EXPECT_EQ(valuesOf(result), (Values{-9.0, -18.0, 30.0}));
        EXPECT_EQ(result.orientation(), Column);
    });
}

// --- unary minus

TEST(VectorUnaryMinus, OfANamedVectorIsNotNegated) {
    Vector const v = rowOf({1.0, 2.0, 3.0});
    Vector const result = -v;
    EXPECT_EQ(valuesOf(result), (Values{1.0, 2.0, 3.0}));
    EXPECT_EQ(result.orientation(), Row);
    EXPECT_NE(result.data(), v.data());
    Vector named{1.0};
    EXPECT_EQ(valuesOf(-named), (Values{1.0}));
}

TEST(VectorUnaryMinus, OfAnRvalueFlipsEverySignInPlace) {
    for (std::size_t const n : lengths()) {
        Values const x = TestKit::specialValues(n);
        Values expected(n);
        for (std::size_t i = 0; i < n; ++i)
            expected[i] = TestKit::fromBits(TestKit::bitsOf(x[i]) ^ 0x8000000000000000);
        forEachPolicy([&] {
            Vector v = rowOf(x);
            double const* const storage = v.data();
            AllocationCounter const counter;
            Vector const result = -std::move(v);
            if (staysOnTheCallingThread(n)) {
                EXPECT_EQ(counter.count(), 0U);
            }
            EXPECT_TRUE(sameBits(elementsOf(result), expected)) << n;
            EXPECT_EQ(result.data(), storage);
            EXPECT_EQ(result.orientation(), Row);
            EXPECT_FALSE(LegacyAccess::hasData(v));
        });
    }
    EXPECT_TRUE(sameBits((-Vector{0.0})[0], -0.0));
}

// --- compound assignment

TEST(VectorCompoundAssignment, IsTheSameUnderEveryPolicyBitForBit) {
    for (std::size_t const n : lengths()) {
        SCOPED_TRACE(n);
        Values const x = TestKit::specialValues(n);
        Values const y = besides(x);
        Values sum(n);
        Values difference(n);
        for (std::size_t i = 0; i < n; ++i) {
            sum[i] = plus(x[i], y[i]);
            difference[i] = minus(x[i], y[i]);
        }
        Vector const b(y);
        ViewVector const view(y.data(), n, Row);
        forEachPolicy([&] {
            Vector v = rowOf(x);
            double const* const storage = v.data();
            AllocationCounter const counter;
            EXPECT_EQ(&(v += b), &v);
            if (staysOnTheCallingThread(n)) {
                EXPECT_EQ(counter.count(), 0U);
            }
            EXPECT_TRUE(sameBits(elementsOf(v), sum));
            v = rowOf(x);
            EXPECT_EQ(&(v -= b), &v);
            EXPECT_TRUE(sameBits(elementsOf(v), difference));
            v = rowOf(x);
            EXPECT_EQ(&(v += view), &v);
            EXPECT_TRUE(sameBits(elementsOf(v), sum));
            v = rowOf(x);
            EXPECT_EQ(&(v -= view), &v);
            EXPECT_TRUE(sameBits(elementsOf(v), difference));
            EXPECT_EQ(v.orientation(), Row);
            EXPECT_TRUE(n == 0 || storage != nullptr);
        });
    }
}

TEST(VectorCompoundAssignment, ReadsAnyVectorFromItsData) {
    OwnVector const b(3, 1, {10.0, 20.0, 30.0});
    b.takeCalls();
    Vector v{1.0, 2.0, 3.0};
    v += b;
    EXPECT_EQ(valuesOf(v), (Values{11.0, 22.0, 33.0}));
    EXPECT_EQ(b.takeCalls(), (std::vector<std::string>{"data"}));
    v -= b;
    EXPECT_EQ(valuesOf(v), (Values{1.0, 2.0, 3.0}));
    EXPECT_EQ(b.takeCalls(), (std::vector<std::string>{"data"}));
}

TEST(VectorCompoundAssignment, WalksTheTargetOnly) {
    Vector v{1.0};
    v += Vector{10.0, 20.0};
    EXPECT_EQ(valuesOf(v), (Values{11.0}));
    v -= ViewVector(Vector{1.0, 1.0});
    EXPECT_EQ(v.length(), 1U);
}

TEST(VectorArithmetic, WorkedExamples) {
    EXPECT_EQ(valuesOf(Vector{1.0, 2.0, 3.0} * Vector{2.0, 2.0, 2.0}), (Values{2.0, 4.0, 6.0}));
    EXPECT_EQ((rowOf({1.0, 2.0}) * Vector{2.0, 2.0}).orientation(), Row);
    EXPECT_EQ(valuesOf(1.0 - Vector{1.0, 2.0}), (Values{0.0, -1.0}));
    EXPECT_EQ(valuesOf(Vector{1.0, 2.0} - 1.0), (Values{0.0, 1.0}));
    EXPECT_EQ(valuesOf(Vector{2.0, 4.0} / 2.0), (Values{1.0, 2.0}));
    EXPECT_EQ((Vector() + Vector()).length(), 0U);
}

} // namespace

} // namespace Tervane::Math::LegacyTest

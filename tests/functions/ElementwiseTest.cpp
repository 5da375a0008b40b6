#include "containers/Access.h"
#include "foundation/ElementwiseDispatch.h"
#include "functions/Generations.h"
#include "kit/Allocations.h"
#include "kit/Bits.h"
#include "kit/ErrorBounds.h"
#include "kit/Lengths.h"
#include "kit/Policies.h"
#include "kit/SpecialValues.h"

#include <Math/ComplexVectorView2.h>
#include <Math/Elementwise.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cmath>
#include <iterator>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace Tervane::Math {

namespace {

using namespace TestKit;

// Through pointers that the compiler cannot see behind, so that it neither folds nor replaces a call.
double (*const volatile sine)(double) = std::sin;
double (*const volatile cosine)(double) = std::cos;
double (*const volatile exponential)(double) = std::exp;
double (*const volatile decimalLogarithm)(double) = std::log10;
double (*const volatile squareRoot)(double) = std::sqrt;
double (*const volatile power)(double, double) = std::pow;
double (*const volatile hypotenuse)(double, double) = std::hypot;

double withoutSign(double x) {
    return fromBits(bitsOf(x) & 0x7fffffffffffffff);
}

/// Special values, then every magnitude, then ordinary numbers, from an `offset` on.
std::vector<double> mixedValues(std::size_t n) {
    std::vector<double> values = specialValues(n / 3);
    std::vector<double> const magnitudes = valuesByBitPattern(n / 3);
    values.insert(values.end(), magnitudes.begin(), magnitudes.end());
    std::vector<double> const ordinary = ordinaryValues(n - values.size());
    values.insert(values.end(), ordinary.begin(), ordinary.end());
    return values;
}

template<class Generation>
class Elementwise : public testing::Test {
protected:
    /// Checks a function of real vectors in both its forms, for a row and a column, under every policy.
    template<class Function, class Scalar>
    static void expectElements(Function f, Scalar scalar, std::vector<std::size_t> const& lengths) {
        for (std::size_t const n : lengths) {
            SCOPED_TRACE("length " + std::to_string(n));
            std::vector<double> const values = mixedValues(n);
            std::vector<double> expected(n);
            for (std::size_t i = 0; i < n; ++i)
                expected[i] = scalar(values[i]);
            forEachPolicy([&] {
                auto const constant = Generation::row(values);
                auto fresh = f(constant);
                EXPECT_TRUE(sameBits(elementsOf(fresh), expected));
                EXPECT_TRUE(sameBits(elementsOf(constant), values)) << "the argument has changed";
                EXPECT_EQ(Generation::orientationOf(fresh), Row);

                auto lent = Generation::column(values);
                double const* const storage = lent.data();
                auto taken = f(std::move(lent));
                EXPECT_TRUE(sameBits(elementsOf(taken), expected));
                EXPECT_EQ(taken.data(), storage) << "the storage was not used again";
                EXPECT_EQ(Generation::orientationOf(taken), Column);
                EXPECT_TRUE(Generation::isMovedFrom(lent));
            });
        }
    }
};

TYPED_TEST_SUITE(Elementwise, Generations, GenerationName);

constexpr std::size_t functionLimit = Detail::parallelLimit(Detail::ElementCost::Function);
constexpr std::size_t streamingLimit = Detail::parallelLimit(Detail::ElementCost::Streaming);

} // namespace

TYPED_TEST(Elementwise, AbsClearsTheSignBit) {
    this->expectElements([]<class V>(V&& x) { return abs(std::forward<V>(x)); }, withoutSign,
                         awkwardLengthsAround(streamingLimit));
}

TYPED_TEST(Elementwise, SinIsTheScalarSine) {
    this->expectElements([]<class V>(V&& x) { return sin(std::forward<V>(x)); },
                         [](double x) { return sine(x); }, awkwardLengthsAround(functionLimit));
}

TYPED_TEST(Elementwise, CosIsTheScalarCosine) {
    this->expectElements([]<class V>(V&& x) { return cos(std::forward<V>(x)); },
                         [](double x) { return cosine(x); }, awkwardLengthsAround(functionLimit));
}

TYPED_TEST(Elementwise, ExpIsTheScalarExponential) {
    this->expectElements([]<class V>(V&& x) { return exp(std::forward<V>(x)); },
                         [](double x) { return exponential(x); }, awkwardLengthsAround(functionLimit));
}

TYPED_TEST(Elementwise, Log10IsTheScalarLogarithm) {
    this->expectElements([]<class V>(V&& x) { return log10(std::forward<V>(x)); },
                         [](double x) { return decimalLogarithm(x); }, awkwardLengthsAround(functionLimit));
}

TYPED_TEST(Elementwise, SqrtIsTheScalarSquareRoot) {
    this->expectElements([]<class V>(V&& x) { return sqrt(std::forward<V>(x)); },
                         [](double x) { return squareRoot(x); }, awkwardLengthsAround(streamingLimit));
}

TYPED_TEST(Elementwise, PowIsTheScalarPower) {
    for (int const n : {-3, -2, -1, 0, 1, 2, 3, 10, 333, INT_MAX, INT_MIN}) {
        SCOPED_TRACE("exponent " + std::to_string(n));
        this->expectElements([n]<class V>(V&& x) { return pow(std::forward<V>(x), n); },
                             [n](double x) { return power(x, static_cast<double>(n)); },
                             n == 3 ? awkwardLengthsAround(functionLimit)
                                    : std::vector<std::size_t>{0, 1, 17, 1025});
    }
}

TYPED_TEST(Elementwise, PowIsNotRepeatedMultiplication) {
    std::vector<double> const values = ordinaryValues(2000);
    auto const cubes = pow(TypeParam::column(values), 3);
    std::size_t different = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        EXPECT_TRUE(sameBits(cubes[i], power(values[i], 3.0)));
        different += bitsOf(cubes[i]) != bitsOf(values[i] * values[i] * values[i]) ? 1U : 0U;
    }
    EXPECT_GT(different, 0U) << "the values do not tell the two apart";
}

TYPED_TEST(Elementwise, PowKnowsZeroAndNegativeExponents) {
    double const nan = std::numeric_limits<double>::quiet_NaN();
    auto const zeroth = pow(TypeParam::column(std::vector{0.0, nan, -2.0}), 0);
    EXPECT_TRUE(sameBits(elementsOf(zeroth), std::vector{1.0, 1.0, 1.0}));
    EXPECT_EQ(pow(TypeParam::column(std::vector{2.0}), -2)[0], 0.25);
    auto const inverse = pow(TypeParam::column(std::vector{0.0, -0.0}), -1);
    EXPECT_EQ(inverse[0], std::numeric_limits<double>::infinity());
    EXPECT_EQ(inverse[1], -std::numeric_limits<double>::infinity());
}

TYPED_TEST(Elementwise, AbsKeepsThePayloadOfANaN) {
    // Written and read as bits, because a signalling NaN does not survive being passed by every route.
    std::vector<double> values(9, 1.0);
    values[3] = fromBits(0xfff0000000000001);
    values[8] = fromBits(0xfff8000000000abc);
    auto const result = abs(TypeParam::column(values));
    EXPECT_EQ(bitsOf(result[3]), 0x7ff0000000000001U);
    EXPECT_EQ(bitsOf(result[8]), 0x7ff8000000000abcU);
    EXPECT_TRUE(sameBits(abs(TypeParam::column(std::vector{-0.0}))[0], 0.0));
}

TYPED_TEST(Elementwise, SqrtReportsANegativeElementThroughErrno) {
    // Lengths below the parallel limit, so that the calling thread computes every element.
    for (std::size_t const n : {std::size_t{1}, std::size_t{9}, std::size_t{300}, std::size_t{1000}})
        for (std::size_t const position : {std::size_t{0}, n / 2, n - 1})
            forEachPolicy([&] {
                std::vector<double> values(n, 4.0);
                errno = 0;
                EXPECT_EQ(sqrt(TypeParam::column(values))[position], 2.0);
                EXPECT_EQ(errno, 0) << "without a negative element";

                values[position] = -4.0;
                auto const lent = sqrt(TypeParam::column(values));
                EXPECT_EQ(errno, EDOM);
                EXPECT_TRUE(isNaN(lent[position]));
                errno = 0;
                auto const constant = TypeParam::column(values);
                auto const fresh = sqrt(constant);
                EXPECT_EQ(errno, EDOM);
                EXPECT_TRUE(sameBits(elementsOf(lent), elementsOf(fresh)));
                for (std::size_t i = 0; i < n; ++i)
                    EXPECT_TRUE(i == position || lent[i] == 2.0) << i;

                values[position] = -0.0;
                errno = 0;
                EXPECT_TRUE(sameBits(sqrt(TypeParam::column(values))[position], -0.0));
                EXPECT_EQ(errno, 0) << "negative zero is in the domain";
            });
    errno = 0;
}

TYPED_TEST(Elementwise, AnEmptyVectorGivesAnEmptyOneOfItsOrientation) {
    forEachPolicy([] {
        auto result = sin(TypeParam::row({}));
        EXPECT_EQ(result.length(), 0U);
        EXPECT_EQ(TypeParam::orientationOf(result), Row);
        EXPECT_EQ(sqrt(TypeParam::column({})).length(), 0U);
    });
}

TYPED_TEST(Elementwise, ALentVectorCostsNoAllocation) {
    PolicyScope const scope(Inline);
    auto x = TypeParam::column(ordinaryValues(1000));
    AllocationCounter const counter;
    auto const y = sqrt(abs(pow(exp(cos(sin(std::move(x)))), 2)));
    EXPECT_EQ(counter.count(), 0U);
    EXPECT_EQ(y.length(), 1000U);
}

TYPED_TEST(Elementwise, AFreshResultHasRoomForNothingMore) {
    PolicyScope const scope(Inline);
    auto const x = TypeParam::column(ordinaryValues(5000));
    AllocationCounter const counter;
    auto const y = abs(x);
    EXPECT_GE(counter.bytes(), 5000 * sizeof(double));
    EXPECT_LT(counter.bytes(), 2 * 5000 * sizeof(double)) << "the elements were allocated twice";
    EXPECT_EQ(y.length(), 5000U);
}

TYPED_TEST(Elementwise, AbsOfComplexElementsIsTheHypotenuse) {
    for (std::size_t const n : awkwardLengthsAround(functionLimit)) {
        SCOPED_TRACE("length " + std::to_string(n));
        std::vector<double> const real = mixedValues(n);
        std::vector<double> const imaginary = specialValues(n, n % 7 + 1);
        std::vector<double> parts(2 * n);
        std::vector<double> expected(n);
        for (std::size_t i = 0; i < n; ++i) {
            parts[2 * i] = real[i];
            parts[2 * i + 1] = imaginary[i];
            expected[i] = hypotenuse(real[i], imaginary[i]);
        }
        forEachPolicy([&] {
            auto const z = TypeParam::complex(parts);
            auto result = abs(z);
            EXPECT_TRUE(sameBits(elementsOf(result), expected));
            EXPECT_EQ(TypeParam::orientationOf(result), Column);
            EXPECT_TRUE(sameBits(partsOf(z), parts)) << "the argument has changed";
        });
    }
}

TYPED_TEST(Elementwise, AbsOfLargeComplexElementsDoesNotOverflow) {
    auto const result = abs(TypeParam::complex(std::vector{3.0, 4.0, -1e308, -1e308}));
    EXPECT_EQ(result[0], 5.0);
    EXPECT_TRUE(within(1e294, result[1], 1.4142135623730951e308));
}

TEST(ElementwiseComplexVector2, AbsOfARowIsAColumn) {
    ComplexVector2 z = Detail::ContainerAccess::uninitialisedComplex(2, Row);
    double const parts[] = {3.0, 4.0, 0.0, -2.0};
    std::copy(std::begin(parts), std::end(parts), z.data());
    ASSERT_EQ(z.orientation(), Row);
    Vector2 magnitudes = abs(z);
    EXPECT_EQ(magnitudes.orientation(), Column);
    EXPECT_TRUE(sameBits(elementsOf(magnitudes), std::vector{5.0, 2.0}));
}

namespace {

template<class T>
concept HasSine = requires(T const& x) {
    sin(x);
};

template<class T>
concept HasPower = requires(T const& x) {
    pow(x, 2);
};

template<class T>
concept HasAbs = requires(T const& x) {
    abs(x);
};

// A view must be made a vector first.
static_assert(HasSine<Vector2> && HasSine<Vector> && !HasSine<VectorView2> && !HasSine<ViewVector>);
static_assert(HasPower<Vector2> && HasPower<Vector> && !HasPower<VectorView2> && !HasPower<ViewVector>);
static_assert(HasAbs<ComplexVector2> && HasAbs<ComplexVector> && !HasAbs<ComplexVectorView2>);
static_assert(!HasSine<ComplexVector2> && !HasSine<ComplexVector>);

} // namespace

} // namespace Tervane::Math

// The products and the unchecked solve of both generations, against products in extended precision.

#include "kit/Allocations.h"
#include "kit/Bits.h"
#include "kit/ErrorBounds.h"
#include "kit/SpecialValues.h"
#include "kit/StreamCapture.h"
#include "legacy/Tables.h"
#include "linalg/Generations.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace Tervane::Math::LinearAlgebraTest {

namespace {

using System::ErrorCode;
using TestKit::ordinaryValues;
using TestKit::sameBits;
using TestKit::StreamCapture;
using TestKit::unitRoundoff;
using TestKit::within;

template<class Generation>
class BLASMemory : public testing::Test {};
TYPED_TEST_SUITE(BLASMemory, Generations, GenerationNames);

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// Every transposition, and a value that is none.
constexpr Transpose transpositions[] = {NoTranspose, Transposed, ConjugateTransposed,
                                        static_cast<Transpose>(7)};

/// How `trans` is understood for real data: callers of the value 7 get no transposition.
bool transposes(Transpose trans) {
    return trans == Transposed || trans == ConjugateTransposed;
}

/// What the shapes are taken for: anything but 0 counts as transposed there.
bool swapsTheShape(Transpose trans) {
    return trans != NoTranspose;
}

/// A column-major table to compute references from.
struct Table {
    std::size_t rows;
    std::size_t columns;
    std::vector<double> elements;

    double at(Transpose trans, std::size_t r, std::size_t c) const {
        return transposes(trans) ? elements[c + r * rows] : elements[r + c * rows];
    }

    template<class Generation>
    typename Generation::Matrix as() const {
        return matrixOf<Generation>(rows, columns, elements);
    }
};

Table table(std::size_t rows, std::size_t columns, unsigned seed) {
    return {rows, columns, ordinaryValues(rows * columns, seed)};
}

struct Reference {
    std::vector<double> values;
    std::vector<double> bounds;
};

/// alpha op(A) op(B) + beta C, and for each element the bound (K + 2) u (|alpha| |A| |B| + |beta| |C|) that
/// holds for every order of summation, with one roundoff more for the reference's own rounding to double.
Reference productOf(Transpose transA, Transpose transB, double alpha, Table const& a, Table const& b,
                    double beta, Table const& c) {
    std::size_t const k = transposes(transA) ? a.rows : a.columns;
    Reference reference;
    for (std::size_t j = 0; j < c.columns; ++j)
        for (std::size_t i = 0; i < c.rows; ++i) {
            long double sum = 0.0L;
            long double size = 0.0L;
            for (std::size_t l = 0; l < k; ++l) {
                long double const term = static_cast<long double>(a.at(transA, i, l))
                                         * static_cast<long double>(b.at(transB, l, j));
                sum += term;
                size += std::abs(term);
            }
            sum *= static_cast<long double>(alpha);
            size *= std::abs(static_cast<long double>(alpha));
            if (beta != 0.0) {
                long double const term =
                    static_cast<long double>(beta) * static_cast<long double>(c.at(NoTranspose, i, j));
                sum += term;
                size += std::abs(term);
            }
            reference.values.push_back(static_cast<double>(sum));
            reference.bounds.push_back(static_cast<double>(k + 3) * unitRoundoff * static_cast<double>(size));
        }
    return reference;
}

struct Sizes {
    std::size_t m;
    std::size_t n;
    std::size_t k;
};

constexpr Sizes awkwardSizes[] = {{1, 1, 1},    {1, 1, 9},     {1, 7, 1},   {5, 1, 3},
                                  {2, 3, 4},    {4, 4, 4},     {3, 8, 5},   {7, 9, 8},
                                  {16, 15, 17}, {33, 1, 31},   {1, 33, 64}, {31, 33, 32},
                                  {65, 63, 64}, {100, 3, 129}, {257, 2, 5}, {64, 128, 96}};

constexpr double scalings[] = {0.0, 1.0, -2.37};

template<class Generation>
class Gemm : public testing::Test {};
TYPED_TEST_SUITE(Gemm, Generations, GenerationNames);

TYPED_TEST(Gemm, MatchesTheProductInExtendedPrecision) {
    for (auto const [m, n, k] : awkwardSizes)
        for (Transpose const transA : {NoTranspose, Transposed, ConjugateTransposed})
            for (Transpose const transB : {NoTranspose, Transposed, ConjugateTransposed})
                for (double const alpha : scalings)
                    for (double const beta : scalings) {
                        Table const a = transposes(transA) ? table(k, m, 1) : table(m, k, 1);
                        Table const b = transposes(transB) ? table(n, k, 2) : table(k, n, 2);
                        Table c = table(m, n, 3);
                        if (beta == 0.0)
                            c.elements.assign(m * n, nan); // what C held does not count
                        auto result = c.as<TypeParam>();
                        ASSERT_EQ(TypeParam::gemm(transA, transB, alpha, a.as<TypeParam>(), b.as<TypeParam>(),
                                                  beta, result),
                                  success);
                        Reference const reference = productOf(transA, transB, alpha, a, b, beta, c);
                        ASSERT_TRUE(within(reference.bounds, elementsOf(result), reference.values))
                            << m << " x " << k << " x " << n << ", transposed " << transA << transB
                            << ", alpha " << alpha << ", beta " << beta;
                    }
}

TYPED_TEST(Gemm, UnlistedTranspositionCountsAsNoneInTheProduct) {
    // The shapes are taken as transposed, the elements are not: only square tables fit both.
    Table const a = table(5, 5, 1);
    Table const b = table(5, 5, 2);
    auto const plain = TypeParam::gemm(NoTranspose, NoTranspose, a.as<TypeParam>(), b.as<TypeParam>());
    auto const unlisted =
        TypeParam::gemm(transpositions[3], transpositions[3], a.as<TypeParam>(), b.as<TypeParam>());
    ASSERT_EQ(unlisted.second, success);
    EXPECT_TRUE(sameBits(elementsOf(*unlisted.first), elementsOf(*plain.first)));
}

TYPED_TEST(Gemm, ConjugateTranspositionIsTranspositionOfRealNumbers) {
    Table const a = table(6, 4, 1);
    Table const b = table(3, 6, 2);
    auto const transposed = TypeParam::gemm(Transposed, Transposed, a.as<TypeParam>(), b.as<TypeParam>());
    auto const conjugated =
        TypeParam::gemm(ConjugateTransposed, ConjugateTransposed, a.as<TypeParam>(), b.as<TypeParam>());
    ASSERT_EQ(conjugated.second, success);
    EXPECT_TRUE(sameBits(elementsOf(*conjugated.first), elementsOf(*transposed.first)));
}

TYPED_TEST(Gemm, MakesItsResult) {
    Table const a = table(4, 2, 1);
    Table const b = table(3, 4, 2);
    Table const c = table(2, 3, 0);
    auto const scaled = TypeParam::gemm(Transposed, Transposed, -1.5, a.as<TypeParam>(), b.as<TypeParam>());
    auto const plain = TypeParam::gemm(Transposed, Transposed, a.as<TypeParam>(), b.as<TypeParam>());
    for (auto const& [made, alpha] : {std::pair(scaled, -1.5), std::pair(plain, 1.0)}) {
        ASSERT_EQ(made.second, success);
        ASSERT_TRUE(made.first);
        EXPECT_EQ(made.first->rows(), 2u);
        EXPECT_EQ(made.first->columns(), 3u);
        Reference const reference = productOf(Transposed, Transposed, alpha, a, b, 0.0, c);
        EXPECT_TRUE(within(reference.bounds, elementsOf(*made.first), reference.values));
    }
}

// A result of negative zeros would show that zeros were added to it.
TYPED_TEST(Gemm, MakesTheBitsThatABetaOfZeroLeaves) {
    for (std::size_t const k : {1, 2, 8}) {
        Table a = table(5, k, 1), b = table(k, 6, 2), c = table(5, 6, 3);
        a.elements.assign(5 * k, -1.0);
        b.elements.assign(k * 6, 0.0);
        for (double const alpha : {1.0, -1.0}) {
            auto into = c.as<TypeParam>();
            ASSERT_EQ(TypeParam::gemm(NoTranspose, NoTranspose, alpha, a.as<TypeParam>(), b.as<TypeParam>(),
                                      0.0, into),
                      success);
            auto const made =
                TypeParam::gemm(NoTranspose, NoTranspose, alpha, a.as<TypeParam>(), b.as<TypeParam>());
            EXPECT_TRUE(sameBits(elementsOf(*made.first), elementsOf(into))) << k << ", alpha " << alpha;
        }
    }
}

TYPED_TEST(Gemm, RefusesAResultOrAnInnerSizeThatDoesNotFitAndLeavesTheResultAlone) {
    Table const fitting = table(3, 5, 3);
    for (Transpose const transA : transpositions)
        for (Transpose const transB : transpositions) {
            Table const a = swapsTheShape(transA) ? table(4, 3, 1) : table(3, 4, 1);
            Table const b = swapsTheShape(transB) ? table(5, 4, 2) : table(4, 5, 2);
            Table const otherInner = swapsTheShape(transB) ? table(5, 3, 2) : table(3, 5, 2);
            auto const refuses = [&](Table const& right, Table const& c) {
                SCOPED_TRACE(testing::Message()
                             << "transposed " << transA << transB << ", C " << c.rows << " x " << c.columns
                             << ", B " << right.rows << " x " << right.columns);
                auto result = c.as<TypeParam>();
                StreamCapture capture;
                Report const report = TypeParam::gemm(transA, transB, 1.0, a.as<TypeParam>(),
                                                      right.as<TypeParam>(), 2.0, result);
                EXPECT_EQ(capture.finish(), "");
                EXPECT_EQ(report, failure(DimensionsMismatch));
                EXPECT_TRUE(sameBits(elementsOf(result), c.elements));
            };
            for (auto const& [rows, columns] :
                 {std::pair(4, 5), std::pair(2, 5), std::pair(3, 6), std::pair(3, 4)})
                refuses(b, table(static_cast<std::size_t>(rows), static_cast<std::size_t>(columns), 4));
            refuses(otherInner, fitting);
        }
}

TYPED_TEST(Gemm, RefusesAResultOfTheTransposedShape) {
    Table const a = table(3, 4, 1);
    Table const b = table(4, 5, 2);
    auto c = table(5, 3, 3).as<TypeParam>();
    EXPECT_EQ(TypeParam::gemm(NoTranspose, NoTranspose, 1.0, a.as<TypeParam>(), b.as<TypeParam>(), 0.0, c),
              failure(DimensionsMismatch));
    EXPECT_TRUE(sameBits(elementsOf(c), table(5, 3, 3).elements));
}

TYPED_TEST(Gemm, TakesTheInputAsTheSameMatrixTwice) {
    Table const a = table(9, 9, 1);
    auto const matrix = a.as<TypeParam>();
    auto const made = TypeParam::gemm(NoTranspose, Transposed, matrix, matrix);
    Reference const reference = productOf(NoTranspose, Transposed, 1.0, a, a, 0.0, table(9, 9, 0));
    EXPECT_TRUE(within(reference.bounds, elementsOf(*made.first), reference.values));
    EXPECT_TRUE(sameBits(elementsOf(matrix), a.elements));
}

TYPED_TEST(Gemm, CarriesNaNsAlong) {
    Table a = table(3, 3, 1);
    a.elements[4] = nan; // row 1, column 1
    auto const made =
        TypeParam::gemm(NoTranspose, NoTranspose, a.as<TypeParam>(), table(3, 2, 2).as<TypeParam>());
    for (std::size_t c = 0; c < 2; ++c) {
        EXPECT_FALSE(std::isnan(elementsOf(*made.first)[0 + 3 * c]));
        EXPECT_TRUE(std::isnan(elementsOf(*made.first)[1 + 3 * c]));
        EXPECT_FALSE(std::isnan(elementsOf(*made.first)[2 + 3 * c]));
    }
}

TYPED_TEST(Gemm, EachEmptyDimensionIsSilent) {
    for (auto const [m, n, k] : {Sizes{0, 3, 2}, Sizes{3, 0, 2}, Sizes{3, 2, 0}, Sizes{0, 0, 0}})
        for (Transpose const transA : {NoTranspose, Transposed})
            for (Transpose const transB : {NoTranspose, Transposed}) {
                Table const a = transposes(transA) ? table(k, m, 1) : table(m, k, 1);
                Table const b = transposes(transB) ? table(n, k, 2) : table(k, n, 2);
                auto const left = a.as<TypeParam>();
                auto const right = b.as<TypeParam>();
                StreamCapture capture;
                auto const made = TypeParam::gemm(transA, transB, left, right);
                EXPECT_EQ(capture.finish(), "");
                EXPECT_EQ(made.second, success);
                EXPECT_EQ(made.first->rows(), m);
                EXPECT_EQ(made.first->columns(), n);
                EXPECT_TRUE(sameBits(elementsOf(*made.first), std::vector<double>(m * n, 0.0)));
            }
}

TYPED_TEST(Gemm, EmptyInnerDimensionScalesTheResultUnlessATableHasNoRows) {
    // The leading dimension is the row count, and oneMKL refuses one of 0: nothing happens to C then, and
    // nobody is told.
    for (Transpose const transA : {NoTranspose, Transposed})
        for (Transpose const transB : {NoTranspose, Transposed}) {
            Table const a = transposes(transA) ? table(0, 2, 1) : table(2, 0, 1);
            Table const b = transposes(transB) ? table(2, 0, 2) : table(0, 2, 2);
            auto c = matrixOf<TypeParam>(2, 2, {1.0, 2.0, 3.0, 4.0});
            StreamCapture capture;
            Report const report =
                TypeParam::gemm(transA, transB, 1.0, a.as<TypeParam>(), b.as<TypeParam>(), 2.0, c);
            EXPECT_EQ(capture.finish(), "");
            EXPECT_EQ(report, success);
            bool const refused = a.rows == 0 || b.rows == 0;
            EXPECT_TRUE(sameBits(elementsOf(c), refused ? std::vector<double>{1.0, 2.0, 3.0, 4.0}
                                                        : std::vector<double>{2.0, 4.0, 6.0, 8.0}))
                << transA << transB;
        }
}

template<class Generation>
class Gemv : public testing::Test {};
TYPED_TEST_SUITE(Gemv, Generations, GenerationNames);

TYPED_TEST(Gemv, MatchesTheProductInExtendedPrecision) {
    for (auto const [m, n, unused] : awkwardSizes)
        for (Transpose const trans : {NoTranspose, Transposed, ConjugateTransposed})
            for (double const alpha : scalings)
                for (double const beta : scalings) {
                    std::size_t const lengthOfX = transposes(trans) ? m : n;
                    std::size_t const lengthOfY = transposes(trans) ? n : m;
                    Table const a = table(m, n, 1);
                    Table const x = table(lengthOfX, 1, 2);
                    Table y = table(lengthOfY, 1, 3);
                    if (beta == 0.0)
                        y.elements.assign(lengthOfY, nan);
                    auto result = TypeParam::column(y.elements);
                    ASSERT_EQ(TypeParam::gemv(trans, alpha, a.as<TypeParam>(), TypeParam::column(x.elements),
                                              beta, result),
                              success);
                    Reference const reference = productOf(trans, NoTranspose, alpha, a, x, beta, y);
                    ASSERT_TRUE(within(reference.bounds, valuesOf(result), reference.values))
                        << m << " x " << n << ", transposed " << trans << ", alpha " << alpha << ", beta "
                        << beta;
                }
}

TYPED_TEST(Gemv, UnlistedTranspositionCountsAsNoneInTheProduct) {
    Table const a = table(4, 4, 1);
    auto const x = TypeParam::column(ordinaryValues(4, 2));
    auto const plain = TypeParam::gemv(NoTranspose, a.as<TypeParam>(), x);
    auto const unlisted = TypeParam::gemv(transpositions[3], a.as<TypeParam>(), x);
    ASSERT_EQ(unlisted.second, success);
    EXPECT_TRUE(sameBits(valuesOf(*unlisted.first), valuesOf(*plain.first)));
}

TYPED_TEST(Gemv, MakesAColumnOfTheRowsOrOfTheColumns) {
    Table const a = table(3, 2, 1);
    auto const plain = TypeParam::gemv(NoTranspose, a.as<TypeParam>(), TypeParam::row({1.0, 2.0}));
    auto const scaled =
        TypeParam::gemv(Transposed, 2.0, a.as<TypeParam>(), TypeParam::column({1.0, 2.0, 3.0}));
    ASSERT_EQ(plain.second, success);
    ASSERT_EQ(scaled.second, success);
    EXPECT_EQ(plain.first->length(), 3u);
    EXPECT_EQ(scaled.first->length(), 2u);
    EXPECT_EQ(plain.first->columns(), 1u);
    EXPECT_EQ(scaled.first->columns(), 1u);
    Reference const ofPlain =
        productOf(NoTranspose, NoTranspose, 1.0, a, {2, 1, {1.0, 2.0}}, 0.0, table(3, 1, 0));
    Reference const ofScaled =
        productOf(Transposed, NoTranspose, 2.0, a, {3, 1, {1.0, 2.0, 3.0}}, 0.0, table(2, 1, 0));
    EXPECT_TRUE(within(ofPlain.bounds, valuesOf(*plain.first), ofPlain.values));
    EXPECT_TRUE(within(ofScaled.bounds, valuesOf(*scaled.first), ofScaled.values));
}

TYPED_TEST(Gemv, LongerVectorsAreReadAndWrittenInPart) {
    auto const a = matrixOf<TypeParam>(3, 2, {1.0, 2.0, 3.0, 4.0, 5.0, 6.0});
    auto y = TypeParam::column({nan, nan, nan, 7.5});
    EXPECT_EQ(TypeParam::gemv(NoTranspose, 1.0, a, TypeParam::column({1.0, 10.0, nan, nan, nan}), 0.0, y),
              success);
    EXPECT_TRUE(sameBits(valuesOf(y), std::vector<double>{41.0, 52.0, 63.0, 7.5}));

    auto z = TypeParam::column({nan, nan, nan, 7.5});
    EXPECT_EQ(TypeParam::gemv(Transposed, 1.0, a, TypeParam::column({1.0, 1.0, 1.0, nan}), 0.0, z), success);
    EXPECT_TRUE(sameBits({z.data(), 2}, std::vector<double>{6.0, 15.0}));
    EXPECT_TRUE(std::isnan(z.data()[2]));
    EXPECT_EQ(z.data()[3], 7.5);
}

TYPED_TEST(Gemv, RefusesShorterVectorsAndLeavesTheResultAlone) {
    auto const a = table(3, 2, 1).as<TypeParam>();
    for (Transpose const trans : transpositions) {
        std::size_t const lengthOfX = swapsTheShape(trans) ? 3 : 2;
        std::size_t const lengthOfY = swapsTheShape(trans) ? 2 : 3;
        for (auto const& [n, m] :
             {std::pair(lengthOfX - 1, lengthOfY), std::pair(lengthOfX, lengthOfY - 1),
              std::pair(std::size_t{0}, lengthOfY), std::pair(lengthOfX, std::size_t{0})}) {
            auto y = TypeParam::column(ordinaryValues(m, 3));
            StreamCapture capture;
            Report const report =
                TypeParam::gemv(trans, 1.0, a, TypeParam::column(ordinaryValues(n, 2)), 0.0, y);
            EXPECT_EQ(capture.finish(), "");
            EXPECT_EQ(report, failure(DimensionsMismatch));
            EXPECT_TRUE(sameBits(valuesOf(y), ordinaryValues(m, 3)));
        }
        EXPECT_EQ(TypeParam::gemv(trans, a, TypeParam::column(ordinaryValues(lengthOfX - 1))).second,
                  failure(DimensionsMismatch));
    }
}

TYPED_TEST(Gemv, EmptyTableLeavesTheResultAsItIs) {
    // Neither a table without rows, whose leading dimension oneMKL refuses, nor one without columns scales y.
    for (auto const& [rows, columns] : {std::pair<std::size_t, std::size_t>(0, 2), {2, 0}, {0, 0}})
        for (Transpose const trans : {NoTranspose, Transposed}) {
            auto const a = table(rows, columns, 1).template as<TypeParam>();
            auto y = TypeParam::column({1.0, 2.0});
            auto const x = TypeParam::column({3.0, 4.0});
            StreamCapture capture;
            Report const report = TypeParam::gemv(trans, 1.0, a, x, 2.0, y);
            auto const made = TypeParam::gemv(trans, a, x);
            EXPECT_EQ(capture.finish(), "");
            EXPECT_EQ(report, success);
            EXPECT_TRUE(sameBits(valuesOf(y), std::vector<double>{1.0, 2.0}));
            EXPECT_EQ(made.second, success);
            EXPECT_TRUE(sameBits(valuesOf(*made.first),
                                 std::vector<double>(transposes(trans) ? columns : rows, 0.0)));
        }
}

template<class Generation>
class UncheckedGesv : public testing::Test {};
TYPED_TEST_SUITE(UncheckedGesv, Generations, GenerationNames);

TYPED_TEST(UncheckedGesv, SolvesForAVector) {
    for (std::size_t const n : {1u, 2u, 3u, 8u, 33u, 100u}) {
        Table const a = table(n, n, 1);
        std::vector<double> const b = ordinaryValues(n, 2);
        auto factors = a.as<TypeParam>();
        auto x = TypeParam::column(b);
        ASSERT_EQ(TypeParam::gesv(factors, x), success);
        EXPECT_LE(backwardError(n, a.elements, valuesOf(x), b), 8.0 * static_cast<double>(n));
    }
}

TYPED_TEST(UncheckedGesv, SolvesForEveryColumnOfAMatrix) {
    constexpr std::size_t n = 17;
    Table const a = table(n, n, 1);
    Table const b = table(n, 5, 2);
    auto factors = a.as<TypeParam>();
    auto x = b.as<TypeParam>();
    ASSERT_EQ(TypeParam::gesv(factors, x), success);
    for (std::size_t c = 0; c < 5; ++c) {
        std::vector<double> const column(x[c], x[c] + n);
        std::vector<double> const right(&b.elements[c * n], &b.elements[c * n] + n);
        EXPECT_LE(backwardError(n, a.elements, column, right), 8.0 * n);
    }
}

TYPED_TEST(UncheckedGesv, LeavesTheFactorsInTheMatrix) {
    // Rows are exchanged, so that L is 1, 0.5 and U is 4, 5, 0.5.
    auto a = matrixOf<TypeParam>(2, 2, {2.0, 4.0, 3.0, 5.0});
    auto b = TypeParam::column({8.0, 14.0});
    ASSERT_EQ(TypeParam::gesv(a, b), success);
    EXPECT_TRUE(sameBits(elementsOf(a), std::vector<double>{4.0, 0.5, 5.0, 0.5}));
    EXPECT_TRUE(sameBits(valuesOf(b), std::vector<double>{1.0, 2.0}));
}

TYPED_TEST(UncheckedGesv, HilbertSystemsHaveASmallBackwardError) {
    for (std::size_t const n : {2u, 5u, 8u, 10u, 12u}) {
        std::vector<double> a(n * n);
        std::vector<double> b(n, 0.0);
        for (std::size_t i = 0; i < n; ++i)
            for (std::size_t j = 0; j < n; ++j)
                b[i] += a[i + j * n] = 1.0 / static_cast<double>(i + j + 1);
        auto factors = matrixOf<TypeParam>(n, n, a);
        auto x = TypeParam::column(b);
        ASSERT_EQ(TypeParam::gesv(factors, x), success);
        EXPECT_LE(backwardError(n, a, valuesOf(x), b), 4.0 * static_cast<double>(n)) << n;
    }
}

TYPED_TEST(UncheckedGesv, SingularSystemCouldNotBeComputed) {
    // And is not reported as a singular matrix: callers rely on it.
    auto a = matrixOf<TypeParam>(2, 2, {1.0, 2.0, 2.0, 4.0});
    auto b = TypeParam::column({1.0, 1.0});
    EXPECT_EQ(TypeParam::gesv(a, b), failure(SolutionNotComputed));
    auto zeros = matrixOf<TypeParam>(3, 3, std::vector<double>(9, 0.0));
    auto right = table(3, 2, 1).as<TypeParam>();
    EXPECT_EQ(TypeParam::gesv(zeros, right), failure(SolutionNotComputed));
}

TYPED_TEST(UncheckedGesv, RowIsASystemOfOrderOneWithManyRightHandSides) {
    auto a = matrixOf<TypeParam>(1, 1, {4.0});
    auto b = TypeParam::row({4.0, 8.0, 10.0});
    EXPECT_EQ(TypeParam::gesv(a, b), success);
    EXPECT_TRUE(sameBits(valuesOf(b), std::vector<double>{1.0, 2.0, 2.5}));
}

TYPED_TEST(UncheckedGesv, OrderComesFromTheRightHandSide) {
    // A larger A is not noticed: its storage is read as a 2 x 2 array, here the identity.
    auto a = matrixOf<TypeParam>(2, 3, {1.0, 0.0, 0.0, 1.0, nan, nan});
    auto b = TypeParam::column({3.0, 4.0});
    EXPECT_EQ(TypeParam::gesv(a, b), success);
    EXPECT_TRUE(sameBits(valuesOf(b), std::vector<double>{3.0, 4.0}));
}

TYPED_TEST(UncheckedGesv, EmptySystemIsAnInvalidParameter) {
    typename TypeParam::Matrix a;
    auto b = TypeParam::column({});
    typename TypeParam::Matrix several(0, 2, 0.0);
    StreamCapture capture;
    Report const ofVector = TypeParam::gesv(a, b);
    Report const ofMatrix = TypeParam::gesv(a, several);
    EXPECT_EQ(capture.finish(), "");
    EXPECT_EQ(ofVector, failure(InvalidParameter));
    EXPECT_EQ(ofMatrix, failure(InvalidParameter));
}

TYPED_TEST(UncheckedGesv, NoRightHandSideStillFactorises) {
    auto a = matrixOf<TypeParam>(2, 2, {2.0, 4.0, 3.0, 5.0});
    typename TypeParam::Matrix b(2, 0, 0.0);
    EXPECT_EQ(TypeParam::gesv(a, b), success);
    EXPECT_TRUE(sameBits(elementsOf(a), std::vector<double>{4.0, 0.5, 5.0, 0.5}));
}

// What only the legacy generation does.

TEST(LegacyGemm, ReturnsTheResultAsItStoodWhenTheShapesDoNotFit) {
    ErrorCode error;
    Matrix const made = BLAS::gemm(NoTranspose, NoTranspose, Matrix(2, 3, 1.0), Matrix(2, 4, 1.0), error);
    EXPECT_EQ(reportOf(error), failure(DimensionsMismatch));
    EXPECT_EQ(made.size(), Dimensions(2, 4));
    EXPECT_TRUE(sameBits(elementsOf(made), std::vector<double>(8, 0.0)));
}

TEST(LegacyGemm, FailedCheckIsReportedAgainAfterwards) {
    // Both reports carry the same value, so that together they show as one: it replaces what the caller's
    // error held.
    ErrorCode error =
        System::ErrorBuilder<LinearAlgebraErrorCode>::make(LinearAlgebraErrorCode::MatrixSingular);
    Matrix c(9, 9, 1.0);
    BLAS::gemm(NoTranspose, NoTranspose, 1.0, Matrix(2, 3, 1.0), Matrix(3, 4, 1.0), 0.0, c, error);
    EXPECT_EQ(reportOf(error), failure(DimensionsMismatch));
    EXPECT_TRUE(sameBits(elementsOf(c), std::vector<double>(81, 1.0)));
}

TEST(LegacyGemv, ReturnsTheResultAsItWasMadeWhenTheShapesDoNotFit) {
    ErrorCode error;
    Vector const made = BLAS::gemv(NoTranspose, Matrix(2, 3, 1.0), Vector(2, 1.0), error);
    EXPECT_EQ(reportOf(error), failure(DimensionsMismatch));
    EXPECT_TRUE(sameBits(valuesOf(made), std::vector<double>(2, 0.0)));
}

TEST(LegacyBLAS, SuccessLeavesTheErrorAsItIs) {
    ErrorCode error =
        System::ErrorBuilder<LinearAlgebraErrorCode>::make(LinearAlgebraErrorCode::MatrixSingular);
    Matrix a(2, 2, 0.0);
    a.set(0, 0, 1.0);
    a.set(1, 1, 1.0);
    Matrix b(2, 2, 1.0);
    Matrix c(2, 2, 0.0);
    Vector x(2, 1.0);
    Vector y(2);
    BLAS::gemm(NoTranspose, NoTranspose, 1.0, a, b, 0.0, c, error);
    BLAS::gemm(NoTranspose, NoTranspose, 1.0, a, b, error);
    BLAS::gemm(NoTranspose, NoTranspose, a, b, error);
    BLAS::gemv(NoTranspose, 1.0, a, x, 0.0, y, error);
    BLAS::gemv(NoTranspose, 1.0, a, x, error);
    BLAS::gemv(NoTranspose, a, x, error);
    BLAS::gesv(a, b, error);
    BLAS::gesv(a, x, error);
    EXPECT_EQ(reportOf(error), failure(MatrixSingular));
}

TEST(LegacyBLAS, FailedAllocationMakesTheErrorUnknown) {
    if (!TestKit::FailingAllocations::areSupported())
        GTEST_SKIP() << "the sanitizers' heap cannot be made to fail";
    constexpr std::size_t n = 200;
    Matrix const a(n, n, 1.0);
    Vector const x(n, 1.0);
    Matrix factors = a;
    Vector right = x;
    ErrorCode errors[3];
    Matrix product(1, 1, 1.0);
    Vector image{1.0};
    {
        TestKit::FailingAllocations const failing(512);
        product = BLAS::gemm(NoTranspose, NoTranspose, a, a, errors[0]);
        image = BLAS::gemv(NoTranspose, a, x, errors[1]);
        BLAS::gesv(factors, right, errors[2]);
    }
    for (ErrorCode const& error : errors)
        EXPECT_TRUE(error.isUnknown());
    EXPECT_EQ(product.size(), Dimensions(0, 0));
    EXPECT_EQ(image.length(), 0u);
    EXPECT_TRUE(sameBits(valuesOf(right), valuesOf(x)));
}

TEST(LegacyBLAS, WithoutMemoryForAnEmptyResultTheErrorIsSetBeforeTheExceptionLeaves) {
    if (!TestKit::FailingAllocations::areSupported())
        GTEST_SKIP() << "the sanitizers' heap cannot be made to fail";
    Matrix const a(2, 2, 1.0);
    AbstractMatrix const& table = a;
    Vector const x(2, 1.0);
    auto const errorOf = [](auto const& operation) {
        ErrorCode error;
        bool threw = false;
        TestKit::FailingAllocations const failing(0);
        try {
            operation(error);
        } catch (std::bad_alloc const&) {
            threw = true;
        }
        return std::pair(threw, error.isUnknown());
    };
    std::pair const expected(true, true);
    EXPECT_EQ(errorOf([&](ErrorCode& e) { BLAS::gemm(NoTranspose, NoTranspose, 2.0, a, a, e); }), expected);
    EXPECT_EQ(errorOf([&](ErrorCode& e) { BLAS::gemm(NoTranspose, NoTranspose, a, a, e); }), expected);
    EXPECT_EQ(errorOf([&](ErrorCode& e) { BLAS::gemv(NoTranspose, 2.0, a, x, e); }), expected);
    EXPECT_EQ(errorOf([&](ErrorCode& e) { BLAS::gemv(NoTranspose, a, x, e); }), expected);
    EXPECT_EQ(errorOf([&](ErrorCode& e) { table.multiply(a, e); }), expected);
    EXPECT_EQ(errorOf([&](ErrorCode& e) { table.multiply(x, e); }), expected);
    EXPECT_EQ(errorOf([&](ErrorCode& e) { table.elementwiseMultiply(a, e); }), expected);
}

TEST(LegacyBLAS, AsksForElementsOnlyWhenTheShapesFit) {
    struct WithoutElements : LegacyTest::OwnMatrix {
        using OwnMatrix::OwnMatrix;
        double const* data() const override { throw std::runtime_error("no elements"); }
    };
    struct VectorWithoutElements : LegacyTest::OwnVector {
        using LegacyTest::OwnVector::RowMajor;
        double const* data() const override { throw std::runtime_error("no elements"); }
    };
    WithoutElements const a(2, 3, std::vector<double>(6, 1.0));
    VectorWithoutElements const x(2, 1, {1.0, 1.0});
    Matrix const b(2, 2, 1.0);
    Matrix c(2, 2, 5.0);
    Vector y(2, 5.0);
    ErrorCode errors[7];
    BLAS::gemm(NoTranspose, NoTranspose, 1.0, a, b, 0.0, c, errors[0]);
    EXPECT_EQ(BLAS::gemm(NoTranspose, NoTranspose, b, a, errors[1]).columns(), 0u); // these fit
    EXPECT_EQ(BLAS::gemm(NoTranspose, NoTranspose, a, b, errors[2]).columns(), 2u);
    BLAS::gemv(NoTranspose, 1.0, a, x, 0.0, y, errors[3]);
    EXPECT_EQ(BLAS::gemv(NoTranspose, a, x, errors[4]).length(), 2u);
    EXPECT_EQ(static_cast<AbstractMatrix const&>(a).multiply(b, errors[5]).columns(), 2u);
    // By the shapes these fit, but the routine would write one element more.
    BLAS::gemv(static_cast<Transpose>(7), 1.0, Matrix(3, 2, 1.0),
               VectorWithoutElements(3, 1, {1.0, 1.0, 1.0}), 0.0, y, errors[6]);
    for (std::size_t const i : {0, 2, 3, 4, 5, 6})
        EXPECT_EQ(reportOf(errors[i]), failure(DimensionsMismatch)) << i;
    EXPECT_TRUE(errors[1].isUnknown());
}

TEST(LegacyBLAS, CodeThatTheCallersTableThrowsIsReportedAsItself) {
    struct Singular : LegacyTest::OwnMatrix {
        using OwnMatrix::OwnMatrix;
        std::size_t rows() const override { throw LinearAlgebraErrorCode::MatrixSingular; }
    };
    Singular const a(1, 1, {1.0});
    ErrorCode error;
    EXPECT_EQ(BLAS::gemm(NoTranspose, NoTranspose, a, a, error).size(), Dimensions(0, 0));
    EXPECT_EQ(reportOf(error), failure(MatrixSingular));
}

TEST(CurrentBLAS, MovedFromMatrixHasNoElementsForItsShape) {
    Matrix2 without(2, 2, 1.0);
    Matrix2 const taken(std::move(without));
    Matrix2 withSome(1, 1, 1.0);
    withSome = without; // keeps its storage, which is too little
    Matrix2 const whole(2, 2, 1.0);
    Vector2 const x(2, 1.0);
    for (Matrix2* const m : {&without, &withSome}) {
        ASSERT_EQ(m->size(), Dimensions(2, 2));
        EXPECT_EQ(reportOf(BLAS::gemm(NoTranspose, NoTranspose, *m, whole)), failure(DimensionsMismatch));
        EXPECT_EQ(reportOf(BLAS::gemm(NoTranspose, Transposed, whole, *m)), failure(DimensionsMismatch));
        EXPECT_EQ(reportOf(BLAS::gemm(NoTranspose, NoTranspose, 1.0, whole, whole, 0.0, *m)),
                  failure(DimensionsMismatch));
        EXPECT_EQ(reportOf(BLAS::gemv(Transposed, *m, x)), failure(DimensionsMismatch));
        EXPECT_EQ(reportOf(BLAS::gemm(NoTranspose, NoTranspose, 0.0, *m, whole)),
                  failure(DimensionsMismatch)); // oneMKL reads it all the same
        EXPECT_EQ(reportOf(BLAS::gemv(NoTranspose, 0.0, *m, x)), success);
    }
}

TEST(LegacyBLAS, CopyOfAShrunkenMatrixGivesTheProductsOfItsShape) {
    Matrix shrunken(3, 3, 2.0);
    shrunken.resize(1, 1, 0.0); // the shape and the storage stay
    Matrix copy(shrunken);
    ASSERT_EQ(copy.size(), Dimensions(3, 3));
    Matrix const whole(3, 3, 1.0);
    std::vector<double> const twos(9, 2.0), sixes(9, 6.0);
    ErrorCode error;
    EXPECT_TRUE(sameBits(elementsOf(BLAS::gemm(NoTranspose, NoTranspose, copy, whole, error)), sixes));
    EXPECT_TRUE(sameBits(elementsOf(BLAS::gemm(NoTranspose, NoTranspose, whole, copy, error)), sixes));
    EXPECT_TRUE(sameBits(elementsOf(copy.elementwiseMultiply(whole, error)), twos));
    for (Matrix const* const matrix : {&shrunken, &copy})
        EXPECT_TRUE(sameBits(valuesOf(BLAS::gemv(NoTranspose, *matrix, Vector(3, 1.0), error)),
                             std::vector<double>(3, 6.0)));
    BLAS::gemm(NoTranspose, NoTranspose, 1.0, whole, whole, 0.0, copy, error);
    EXPECT_TRUE(sameBits(std::vector<double>(copy.data(), copy.data() + 9), std::vector<double>(9, 3.0)));
    EXPECT_FALSE(error.hasError());
}

TEST(LegacyBLAS, ProductWithAViewOfNothingIsAMismatch) {
    double const outside = 7.0;
    Matrix const a(2, 1, 1.0);
    for (ViewVector const& nothing :
         {ViewVector(), ViewVector(&outside, 0, Column), ViewVector(&outside, 0, Row),
          ViewVector(nullptr, 0, static_cast<VectorOrientation>(5))}) {
        ASSERT_EQ(nothing.length(), 1u);
        Vector y(2, 5.0);
        ErrorCode error;
        BLAS::gemv(NoTranspose, 1.0, a, nothing, 0.0, y, error);
        EXPECT_EQ(reportOf(error), failure(DimensionsMismatch));
        EXPECT_TRUE(sameBits(valuesOf(y), std::vector<double>(2, 5.0)));
        // What is not read need not be there.
        ErrorCode ofOthers;
        EXPECT_TRUE(sameBits(valuesOf(BLAS::gemv(NoTranspose, 0.0, a, nothing, ofOthers)),
                             std::vector<double>(2, 0.0)));
        BLAS::gemv(NoTranspose, Matrix(2, 0, 1.0), nothing, ofOthers);
        EXPECT_FALSE(ofOthers.hasError());
    }
}

TYPED_TEST(BLASMemory, GemmWithAnUnlistedTransposeReadsNoColumnThatIsNotThere) {
    constexpr auto unlisted = static_cast<Transpose>(7);
    auto const tall = matrixOf<TypeParam>(3, 2, std::vector<double>(6, 1.0));
    auto const wide = matrixOf<TypeParam>(2, 3, std::vector<double>(6, 1.0));
    auto const ones = matrixOf<TypeParam>(3, 3, std::vector<double>(9, 1.0));
    auto const gemm = [](Transpose transA, Transpose transB, double alpha, auto const& a, auto const& b,
                         std::size_t m, std::size_t n) {
        auto c = matrixOf<TypeParam>(m, n, std::vector<double>(m * n, 5.0));
        Report const report = TypeParam::gemm(transA, transB, alpha, a, b, 2.0, c);
        return std::pair(report, elementsOf(c));
    };
    auto const all = [](Report report, std::size_t count, double value) {
        return std::pair(report, std::vector<double>(count, value));
    };
    Report const mismatch = failure(DimensionsMismatch);
    EXPECT_EQ(gemm(unlisted, NoTranspose, 1.0, tall, ones, 2, 3), all(mismatch, 6, 5.0));
    EXPECT_EQ(gemm(NoTranspose, unlisted, 1.0, wide, wide, 2, 2),
              all(success, 4, 5.0)); // refused by the routine
    EXPECT_EQ(gemm(NoTranspose, unlisted, 1.0, tall, tall, 3, 3), all(mismatch, 9, 5.0));
    // oneMKL may read the operands with an alpha of 0, too; where there is nothing to read, C is scaled.
    EXPECT_EQ(gemm(unlisted, NoTranspose, 0.0, tall, ones, 2, 3), all(mismatch, 6, 5.0));
    auto const nothing = matrixOf<TypeParam>(3, 0, {});
    EXPECT_EQ(gemm(NoTranspose, unlisted, 1.0, nothing, nothing, 3, 3), all(success, 9, 10.0));
    EXPECT_EQ(gemm(unlisted, unlisted, 1.0, ones, ones, 3, 3), all(success, 9, 13.0));
}

TYPED_TEST(BLASMemory, GemvWithAnUnlistedTransposeStaysWithinItsVectors) {
    constexpr auto unlisted = static_cast<Transpose>(7);
    auto const tall = matrixOf<TypeParam>(3, 2, std::vector<double>(6, 1.0));
    auto const wide = matrixOf<TypeParam>(2, 3, std::vector<double>(6, 1.0));
    auto const gemv = [](auto const& a, std::size_t lengthOfX, std::size_t lengthOfY) {
        auto y = TypeParam::column(std::vector<double>(lengthOfY, 5.0));
        Report const report =
            TypeParam::gemv(unlisted, 1.0, a, TypeParam::column(std::vector<double>(lengthOfX, 1.0)), 0.0, y);
        return std::pair(report, valuesOf(y));
    };
    using Values = std::vector<double>;
    Report const mismatch = failure(DimensionsMismatch);
    // The shapes ask for 3 and 2, the routine reads 2 and writes 3.
    EXPECT_EQ(gemv(tall, 3, 2), std::pair(mismatch, Values(2, 5.0)));
    EXPECT_EQ(gemv(tall, 3, 3), std::pair(success, Values(3, 2.0)));
    EXPECT_EQ(gemv(wide, 2, 3), std::pair(mismatch, Values(3, 5.0)));
    EXPECT_EQ(gemv(wide, 3, 3), std::pair(success, Values{3.0, 3.0, 5.0}));
    // The form that makes its result makes it as long as the shapes ask.
    EXPECT_EQ(TypeParam::gemv(unlisted, tall, TypeParam::column({1.0, 1.0, 1.0})).second, mismatch);
    EXPECT_EQ(TypeParam::gemv(unlisted, wide, TypeParam::column({1.0, 1.0, 1.0})).second, success);
}

TEST(LegacyBLAS, ExceptionOfTheCallersTableMakesTheErrorUnknown) {
    struct Broken : LegacyTest::OwnMatrix {
        using OwnMatrix::OwnMatrix;
        double const* data() const override { throw std::runtime_error("no elements"); }
    };
    Broken const broken(1, 1, {1.0});
    Matrix const fine(1, 1, 1.0);
    ErrorCode ofGemm;
    ErrorCode ofGemv;
    Matrix c(1, 1, 5.0);
    EXPECT_EQ(&BLAS::gemm(NoTranspose, NoTranspose, 1.0, broken, fine, 0.0, c, ofGemm), &c);
    EXPECT_EQ(c[Index(0, 0)], 5.0);
    EXPECT_EQ(BLAS::gemv(NoTranspose, broken, Vector{1.0}, ofGemv).length(), 0u);
    EXPECT_TRUE(ofGemm.isUnknown());
    EXPECT_TRUE(ofGemv.isUnknown());
}

TEST(LegacyBLAS, TakesTablesOfTheCallersOwn) {
    // The storage that data() gives is taken as column-major, whatever the table calls itself.
    LegacyTest::OwnMatrix const a(2, 3, {1.0, 2.0, 3.0, 4.0, 5.0, 6.0});
    LegacyTest::OwnMatrix const b(3, 1, {1.0, 10.0, 100.0});
    LegacyTest::OwnVector const x(3, 1, {1.0, 10.0, 100.0});
    ErrorCode error;
    Matrix const product = BLAS::gemm(NoTranspose, NoTranspose, a, b, error);
    Vector const image = BLAS::gemv(NoTranspose, a, x, error);
    EXPECT_FALSE(error.hasError());
    EXPECT_EQ(product.size(), Dimensions(2, 1));
    EXPECT_TRUE(sameBits(elementsOf(product), std::vector<double>{531.0, 642.0}));
    EXPECT_TRUE(sameBits(valuesOf(image), std::vector<double>{531.0, 642.0}));
}

TEST(LegacyBLAS, TakesViews) {
    std::vector<double> const elements = {1.0, 2.0, 3.0, 4.0};
    ErrorCode error;
    Matrix const a = matrixOf<Legacy>(2, 2, elements);
    Vector const image = BLAS::gemv(NoTranspose, a, ViewVector(elements.data() + 2, 2, Row), error);
    EXPECT_FALSE(error.hasError());
    EXPECT_TRUE(sameBits(valuesOf(image), std::vector<double>{15.0, 22.0}));
}

TEST(AbstractMatrixMultiply, IsTheProductOfTables) {
    Matrix const a = matrixOf<Legacy>(2, 3, {1.0, 2.0, 3.0, 4.0, 5.0, 6.0});
    Matrix const b = matrixOf<Legacy>(3, 2, {1.0, 10.0, 100.0, 2.0, 20.0, 200.0});
    AbstractMatrix const& left = a;
    ErrorCode error;
    Matrix const product = left.multiply(b, error);
    EXPECT_FALSE(error.hasError());
    EXPECT_EQ(product.size(), Dimensions(2, 2));
    EXPECT_TRUE(sameBits(elementsOf(product), std::vector<double>{531.0, 642.0, 1062.0, 1284.0}));

    Matrix const refused = left.multiply(a, error);
    EXPECT_EQ(reportOf(error), failure(DimensionsMismatch));
    EXPECT_TRUE(sameBits(elementsOf(refused), std::vector<double>(6, 0.0)));
}

TEST(AbstractMatrixMultiply, IsTheProductWithAVector) {
    Matrix const a = matrixOf<Legacy>(2, 3, {1.0, 2.0, 3.0, 4.0, 5.0, 6.0});
    AbstractMatrix const& left = a;
    ErrorCode error;
    Vector const image = left.multiply(Vector{1.0, 10.0, 100.0, nan}, error);
    EXPECT_FALSE(error.hasError());
    EXPECT_TRUE(sameBits(valuesOf(image), std::vector<double>{531.0, 642.0}));

    Vector const refused = left.multiply(Vector{1.0, 10.0}, error);
    EXPECT_EQ(reportOf(error), failure(DimensionsMismatch));
    EXPECT_TRUE(sameBits(valuesOf(refused), std::vector<double>(2, 0.0)));
}

TEST(BLASGenerations, ComputeBitForBitTheSame) {
    Table const a = table(37, 41, 1);
    Table const b = table(41, 29, 2);
    auto const current = Current::gemm(NoTranspose, NoTranspose, 0.3, a.as<Current>(), b.as<Current>());
    auto const legacy = Legacy::gemm(NoTranspose, NoTranspose, 0.3, a.as<Legacy>(), b.as<Legacy>());
    EXPECT_TRUE(sameBits(elementsOf(*legacy.first), elementsOf(*current.first)));
}

TEST(BLAS, ThreadsComputeIndependently) {
    constexpr std::size_t threadCount = 4;
    std::vector<int> failures(threadCount, 0);
    {
        std::vector<std::jthread> threads;
        for (std::size_t t = 0; t < threadCount; ++t)
            threads.emplace_back([&failures, t] {
                std::size_t const n = 20 + t;
                Table const a = table(n, n, static_cast<unsigned>(t));
                Table const c = table(n, n, 0);
                Reference const reference = productOf(NoTranspose, Transposed, 1.0, a, a, 0.0, c);
                std::vector<double> const b = ordinaryValues(n);
                for (int i = 0; i < 30; ++i) {
                    auto const product =
                        Current::gemm(NoTranspose, Transposed, a.as<Current>(), a.as<Current>());
                    failures[t] += !within(reference.bounds, elementsOf(*product.first), reference.values);
                    auto factors = a.as<Legacy>();
                    auto x = Legacy::column(b);
                    failures[t] += Legacy::gesv(factors, x) != success;
                    failures[t] +=
                        !(backwardError(n, a.elements, valuesOf(x), b) <= 8.0 * static_cast<double>(n));
                }
            });
    }
    EXPECT_EQ(failures, std::vector<int>(threadCount, 0));
}

} // namespace

} // namespace Tervane::Math::LinearAlgebraTest

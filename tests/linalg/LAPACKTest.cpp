// The LAPACK drivers of both generations: certified regressions, exact solutions, and what each refuses.

#include "kit/Allocations.h"
#include "kit/Bits.h"
#include "kit/ErrorBounds.h"
#include "kit/SpecialValues.h"
#include "kit/StreamCapture.h"
#include "linalg/CertifiedProblems.h"
#include "linalg/Generations.h"

#include <System/Guard.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <fstream>
#include <limits>
#include <new>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace Tervane::Math::LinearAlgebraTest {

namespace {

using System::ErrorCode;
using TestKit::FailingAllocations;
using TestKit::ordinaryValues;
using TestKit::sameBits;
using TestKit::StreamCapture;
using TestKit::unitRoundoff;
using TestKit::within;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// Runs `call`, which must print nothing.
template<class Call>
auto silently(Call const& call) {
    StreamCapture capture;
    auto result = call();
    EXPECT_EQ(capture.finish(), "");
    return result;
}

// Its columns are orthogonal and of length 2, so that solutions can be written down.
std::vector<double> const orthogonal = {1.0, 1.0, 1.0, 1.0, 1.0, -1.0, 1.0, -1.0};
std::vector<double> const orthogonalTransposed = {1.0, 1.0, 1.0, -1.0, 1.0, 1.0, 1.0, -1.0};

std::vector<double> leading(std::vector<double> const& values, std::size_t n) {
    return std::vector<double>(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(n));
}

template<class Generation>
class CheckedGesv : public testing::Test {};
TYPED_TEST_SUITE(CheckedGesv, Generations, GenerationNames);

TYPED_TEST(CheckedGesv, SolvesInPlace) {
    for (std::size_t const n : {1u, 2u, 3u, 8u, 33u, 100u}) {
        std::vector<double> const a = ordinaryValues(n * n, 1);
        std::vector<double> const b = ordinaryValues(n, 2);
        auto factors = matrixOf<TypeParam>(n, n, a);
        auto x = TypeParam::column(b);
        ASSERT_EQ(TypeParam::checkedGesv(factors, x), success);
        EXPECT_LE(backwardError(n, a, valuesOf(x), b), 8.0 * static_cast<double>(n));
    }
    auto a = matrixOf<TypeParam>(2, 2, {2.0, 4.0, 3.0, 5.0});
    auto b = TypeParam::column({8.0, 14.0});
    ASSERT_EQ(TypeParam::checkedGesv(a, b), success);
    EXPECT_TRUE(sameBits(elementsOf(a), std::vector<double>{4.0, 0.5, 5.0, 0.5}));
    EXPECT_TRUE(sameBits(valuesOf(b), std::vector<double>{1.0, 2.0}));
}

TYPED_TEST(CheckedGesv, SingularSystemCouldNotBeComputed) {
    auto a = matrixOf<TypeParam>(2, 2, {1.0, 2.0, 2.0, 4.0});
    auto b = TypeParam::column({1.0, 1.0});
    EXPECT_EQ(silently([&] { return TypeParam::checkedGesv(a, b); }), failure(SolutionNotComputed));
}

TYPED_TEST(CheckedGesv, EmptySystemIsAnInvalidParameter) {
    typename TypeParam::Matrix a;
    auto b = TypeParam::column({});
    EXPECT_EQ(silently([&] { return TypeParam::checkedGesv(a, b); }), failure(InvalidParameter));
}

TYPED_TEST(CheckedGesv, RowIsSolvedForItsFirstElementWhenTheSystemHasOrderOne) {
    auto a = matrixOf<TypeParam>(1, 1, {4.0});
    auto b = TypeParam::row({2.0, 8.0});
    EXPECT_EQ(TypeParam::checkedGesv(a, b), success);
    EXPECT_TRUE(sameBits(valuesOf(b), std::vector<double>{0.5, 8.0}));
}

/// What a wrong shape leads to; the arguments must stay as they are.
template<class Generation>
Report reportOfWrongShape(std::size_t rows, std::size_t columns, typename Generation::Vector b) {
    std::vector<double> const elements = ordinaryValues(rows * columns);
    std::vector<double> const right = valuesOf(b);
    auto a = matrixOf<Generation>(rows, columns, elements);
    Report const report = silently([&] { return Generation::checkedGesv(a, b); });
    EXPECT_TRUE(sameBits(elementsOf(a), elements));
    EXPECT_TRUE(sameBits(valuesOf(b), right));
    return report;
}

TEST(CurrentGesv, AnswersMinusOneOfTheSystemCategoryForAWrongShape) {
    Report const minusOne = {Report::Kind::System, -1};
    EXPECT_EQ(reportOfWrongShape<Current>(2, 3, Current::column({1.0, 2.0})), minusOne);
    EXPECT_EQ(reportOfWrongShape<Current>(3, 2, Current::column({1.0, 2.0})), minusOne);
    EXPECT_EQ(reportOfWrongShape<Current>(2, 2, Current::column({1.0, 2.0, 3.0})), minusOne);
    EXPECT_EQ(reportOfWrongShape<Current>(2, 2, Current::column({1.0})), minusOne);
    EXPECT_EQ(reportOfWrongShape<Current>(2, 2, Current::row({1.0, 2.0})), minusOne);
}

TEST(LegacyGesv, TellsAMatrixThatIsNotSquareFromARightHandSideThatDoesNotFit) {
    EXPECT_EQ(reportOfWrongShape<Legacy>(2, 3, Legacy::column({1.0, 2.0})), failure(MatrixNotSquare));
    EXPECT_EQ(reportOfWrongShape<Legacy>(3, 2, Legacy::column({1.0, 2.0})), failure(MatrixNotSquare));
    EXPECT_EQ(reportOfWrongShape<Legacy>(2, 3, Legacy::column({1.0})),
              failure(MatrixNotSquare)); // looked at first
    EXPECT_EQ(reportOfWrongShape<Legacy>(2, 2, Legacy::column({1.0, 2.0, 3.0})), failure(DimensionsMismatch));
    EXPECT_EQ(reportOfWrongShape<Legacy>(2, 2, Legacy::column({1.0})), failure(DimensionsMismatch));
    EXPECT_EQ(reportOfWrongShape<Legacy>(2, 2, Legacy::row({1.0, 2.0})), failure(DimensionsMismatch));
}

// An empty row has one row by its shape, so its shape fits one equation.
TEST(CurrentGesv, AnEmptyRowDoesNotFitOneEquation) {
    EXPECT_EQ(reportOfWrongShape<Current>(1, 1, Current::row({})), (Report{Report::Kind::System, -1}));
}

TEST(LegacyGesv, AnEmptyRowDoesNotFitOneEquation) {
    EXPECT_EQ(reportOfWrongShape<Legacy>(1, 1, Legacy::row({})), failure(DimensionsMismatch));
}

TEST(CurrentLAPACK, MovedFromMatrixHasNoElementsForItsShape) {
    Matrix2 m(2, 2, 1.0);
    Matrix2 whole(std::move(m));
    Vector2 b(2, 1.0);
    Vector2 d(2, 1.0);
    EXPECT_EQ(reportOf(LAPACK::gesv(m, b)), (Report{Report::Kind::System, -1})); // as every mismatch
    EXPECT_EQ(reportOf(LAPACK::gels(NoTranspose, m, b)), failure(DimensionsMismatch));
    EXPECT_EQ(reportOf(LAPACK::gelsd(m, b, 0.0)), failure(DimensionsMismatch));
    EXPECT_EQ(reportOf(LAPACK::gglse(m, whole, b, d)), failure(DimensionsMismatch));
    EXPECT_EQ(reportOf(LAPACK::gglse(whole, m, b, d)), failure(DimensionsMismatch));
    EXPECT_TRUE(sameBits(valuesOf(b), std::vector<double>(2, 1.0)));
}

TEST(LegacyLAPACK, CopyOfAShrunkenMatrixIsSolvedInItsShape) {
    Matrix shrunken = matrixOf<Legacy>(2, 2, {2.0, 0.0, 0.0, 4.0});
    shrunken.resize(0, 0, 0.0); // the shape and the storage stay
    Matrix copy(shrunken);
    Vector b{6.0, 8.0};
    System::ErrorCode error;
    LAPACK::gesv(copy, b, error);
    EXPECT_FALSE(error.hasError());
    EXPECT_TRUE(sameBits(valuesOf(b), std::vector<double>{3.0, 2.0}));
}

/// The two least-squares drivers behind one call.
enum class Driver { Factorisation, SingularValues };

/// Below every ratio of singular values here, so that none counts as zero.
constexpr double keepEverything = 1e-17;

template<class Generation>
Report leastSquares(Driver driver, typename Generation::Matrix& a, typename Generation::Vector& b) {
    return driver == Driver::Factorisation ? Generation::gels(NoTranspose, a, b)
                                           : Generation::gelsd(a, b, keepEverything);
}

constexpr Driver drivers[] = {Driver::Factorisation, Driver::SingularValues};

template<class Generation>
class LeastSquares : public testing::Test {};
TYPED_TEST_SUITE(LeastSquares, Generations, GenerationNames);

TYPED_TEST(LeastSquares, CertifiedRegressionsHaveTheirDigits) {
    // What is asked for is a digit or two below what the drivers give: the condition number (of the scaled
    // model, where the factorisation does not mind the scale of columns) and a large residual cost the
    // others.
    for (CertifiedProblem const& problem : certifiedProblems())
        for (Driver const driver : drivers) {
            SCOPED_TRACE(problem.name + (driver == Driver::Factorisation ? " by gels" : " by gelsd"));
            auto a = matrixOf<TypeParam>(problem.rows, problem.columns, problem.model);
            auto b = TypeParam::column(problem.measurements);
            ASSERT_EQ(leastSquares<TypeParam>(driver, a, b), success);
            ASSERT_EQ(b.length(), problem.rows);
            int const digits = driver == Driver::Factorisation ? problem.digitsByFactorisation
                                                               : problem.digitsBySingularValues;
            for (std::size_t i = 0; i < problem.columns; ++i) {
                double const certified = problem.coefficients[i];
                EXPECT_TRUE(within(std::pow(10.0, -digits) * std::abs(certified), b[i], certified)) << i;
            }
        }
}

TYPED_TEST(LeastSquares, ResidualStandsBehindTheSolution) {
    for (Driver const driver : drivers) {
        auto a = matrixOf<TypeParam>(4, 2, orthogonal);
        auto b = TypeParam::column({1.0, 2.0, 3.0, 4.0});
        ASSERT_EQ(leastSquares<TypeParam>(driver, a, b), success);
        ASSERT_EQ(b.length(), 4u);
        EXPECT_TRUE(within(1e-14, leading(valuesOf(b), 2), std::vector<double>{2.5, -0.5}));
        // The residual is -1, -1, 1, 1.
        EXPECT_TRUE(within(1e-14, b[2] * b[2] + b[3] * b[3], 4.0));
    }
}

TYPED_TEST(LeastSquares, UnderdeterminedSystemGetsTheShortestSolution) {
    for (Driver const driver : drivers) {
        auto a = matrixOf<TypeParam>(2, 4, orthogonalTransposed);
        auto b = TypeParam::column({4.0, 8.0, nan, nan});
        ASSERT_EQ(leastSquares<TypeParam>(driver, a, b), success);
        EXPECT_TRUE(within(1e-14, valuesOf(b), std::vector<double>{3.0, -1.0, 3.0, -1.0}));
    }
}

// From 26 unknowns on the singular value decomposition divides the problem and takes a workspace of integers.
TYPED_TEST(LeastSquares, ManyUnknownsAreFound) {
    constexpr std::size_t rows = 90, columns = 70;
    std::vector<double> elements(rows * columns), solution(columns), rightHandSide(rows, 0.0);
    for (std::size_t j = 0; j < columns; ++j) {
        solution[j] = static_cast<double>(j) - 30.0;
        for (std::size_t i = 0; i < rows; ++i) {
            double const element = (i == j ? 4.0 : 0.0) + 1.0 / static_cast<double>(1 + i + j);
            elements[i + j * rows] = element;
            rightHandSide[i] += element * solution[j];
        }
    }
    for (Driver const driver : drivers) {
        auto a = matrixOf<TypeParam>(rows, columns, elements);
        auto b = TypeParam::column(rightHandSide);
        ASSERT_EQ(leastSquares<TypeParam>(driver, a, b), success);
        EXPECT_TRUE(within(1e-11, leading(valuesOf(b), columns), solution));
    }
}

TYPED_TEST(LeastSquares, LongerRightHandSideKeepsWhatLiesBehind) {
    for (Driver const driver : drivers) {
        auto a = matrixOf<TypeParam>(4, 2, orthogonal);
        auto b = TypeParam::column({1.0, 2.0, 3.0, 4.0, 5.5, nan});
        ASSERT_EQ(leastSquares<TypeParam>(driver, a, b), success);
        ASSERT_EQ(b.length(), 6u);
        EXPECT_TRUE(within(1e-14, leading(valuesOf(b), 2), std::vector<double>{2.5, -0.5}));
        EXPECT_EQ(b[4], 5.5);
        EXPECT_TRUE(std::isnan(b[5]));
    }
}

TYPED_TEST(LeastSquares, AnEmptyRowDoesNotFitOneEquation) {
    for (Driver const driver : drivers) {
        auto a = matrixOf<TypeParam>(1, 1, {2.0});
        auto b = TypeParam::row({});
        EXPECT_EQ(leastSquares<TypeParam>(driver, a, b), failure(DimensionsMismatch));
        EXPECT_EQ(elementsOf(a)[0], 2.0);
        auto larger = matrixOf<TypeParam>(2, 1, {2.0, 2.0});
        EXPECT_EQ(leastSquares<TypeParam>(driver, larger, b), failure(InvalidParameter));
    }
    // gels clears the solution where there are no unknowns, gelsd leaves it.
    auto none = matrixOf<TypeParam>(1, 0, {});
    auto b = TypeParam::row({});
    EXPECT_EQ(leastSquares<TypeParam>(Driver::Factorisation, none, b), failure(DimensionsMismatch));
    EXPECT_EQ(leastSquares<TypeParam>(Driver::SingularValues, none, b), success);
}

TYPED_TEST(LeastSquares, RefusesARowAndAVectorTooShortAndLeavesBothAlone) {
    for (Driver const driver : drivers)
        for (auto const& [rows, columns] :
             {std::pair<std::size_t, std::size_t>(4, 2), {2, 4}, {1, 2}, {2, 1}})
            for (bool const isRow : {true, false}) {
                std::vector<double> const elements = ordinaryValues(rows * columns);
                std::vector<double> const right =
                    ordinaryValues(isRow ? std::max(rows, columns) : std::max(rows, columns) - 1);
                auto a = matrixOf<TypeParam>(rows, columns, elements);
                auto b = isRow ? TypeParam::row(right) : TypeParam::column(right);
                EXPECT_EQ(silently([&] { return leastSquares<TypeParam>(driver, a, b); }),
                          failure(InvalidParameter));
                EXPECT_TRUE(sameBits(elementsOf(a), elements));
                EXPECT_TRUE(sameBits(valuesOf(b), right));
            }
}

TYPED_TEST(LeastSquares, RowIsTakenForAMatrixOfOneElement) {
    for (Driver const driver : drivers) {
        auto a = matrixOf<TypeParam>(1, 1, {4.0});
        auto b = TypeParam::row({2.0, 7.0});
        EXPECT_EQ(leastSquares<TypeParam>(driver, a, b), success);
        EXPECT_TRUE(within(2.0 * unitRoundoff, b[0], 0.5));
        EXPECT_EQ(b[1], 7.0);
    }
}

TYPED_TEST(LeastSquares, RefusesAMatrixWithoutRows) {
    for (Driver const driver : drivers)
        for (std::size_t const columns : {0u, 3u}) {
            typename TypeParam::Matrix a(0, columns, 0.0);
            auto b = TypeParam::column({1.0, 2.0, 3.0});
            EXPECT_EQ(silently([&] { return leastSquares<TypeParam>(driver, a, b); }),
                      failure(InvalidParameter));
            EXPECT_TRUE(sameBits(valuesOf(b), std::vector<double>{1.0, 2.0, 3.0}));
        }
}

TYPED_TEST(LeastSquares, MatrixWithoutColumnsHasNothingToSolve) {
    for (Driver const driver : drivers) {
        typename TypeParam::Matrix a(3, 0, 0.0);
        auto b = TypeParam::column({1.0, 2.0, 3.0});
        EXPECT_EQ(silently([&] { return leastSquares<TypeParam>(driver, a, b); }), success);
        EXPECT_EQ(b.length(), 3u);
    }
}

template<class Generation>
class Gels : public testing::Test {};
TYPED_TEST_SUITE(Gels, Generations, GenerationNames);

TYPED_TEST(Gels, TakesTheTranspose) {
    auto tall = matrixOf<TypeParam>(4, 2, orthogonal);
    auto b = TypeParam::column({4.0, 8.0, nan, nan});
    ASSERT_EQ(TypeParam::gels(Transposed, tall, b), success);
    EXPECT_TRUE(within(1e-14, valuesOf(b), std::vector<double>{3.0, -1.0, 3.0, -1.0}));

    auto wide = matrixOf<TypeParam>(2, 4, orthogonalTransposed);
    auto c = TypeParam::column({1.0, 2.0, 3.0, 4.0});
    ASSERT_EQ(TypeParam::gels(Transposed, wide, c), success);
    EXPECT_TRUE(within(1e-14, leading(valuesOf(c), 2), std::vector<double>{2.5, -0.5}));
}

TYPED_TEST(Gels, RefusesTheConjugateTranspose) {
    // The driver for real numbers knows two transpositions only; the third is passed on as it is.
    auto a = matrixOf<TypeParam>(4, 2, orthogonal);
    auto b = TypeParam::column({4.0, 8.0, 0.0, 0.0});
    EXPECT_EQ(silently([&] { return TypeParam::gels(ConjugateTransposed, a, b); }),
              failure(InvalidParameter));
    EXPECT_TRUE(sameBits(elementsOf(a), orthogonal));
}

TYPED_TEST(Gels, UnlistedTranspositionIsNone) {
    auto a = matrixOf<TypeParam>(4, 2, orthogonal);
    auto b = TypeParam::column({1.0, 2.0, 3.0, 4.0});
    ASSERT_EQ(TypeParam::gels(static_cast<Transpose>(7), a, b), success);
    EXPECT_TRUE(within(1e-14, leading(valuesOf(b), 2), std::vector<double>{2.5, -0.5}));
}

TYPED_TEST(Gels, RankDeficientMatrixHasNoLeastSquaresSolution) {
    auto a = matrixOf<TypeParam>(3, 2, {1.0, 1.0, 1.0, 0.0, 0.0, 0.0});
    auto b = TypeParam::column({1.0, 2.0, 3.0});
    EXPECT_EQ(silently([&] { return TypeParam::gels(NoTranspose, a, b); }), failure(LeastSquaresFailed));
}

TEST(LeastSquaresFailed, HasNoTextOfItsOwn) {
    auto a = matrixOf<Current>(3, 2, {1.0, 1.0, 1.0, 0.0, 0.0, 0.0});
    auto b = Current::column({1.0, 2.0, 3.0});
    auto const result = LAPACK::gels(NoTranspose, a, b);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().message().narrow(), "Unrecognised error (7)");

    auto legacyA = matrixOf<Legacy>(3, 2, {1.0, 1.0, 1.0, 0.0, 0.0, 0.0});
    auto legacyB = Legacy::column({1.0, 2.0, 3.0});
    ErrorCode error;
    LAPACK::gels(NoTranspose, legacyA, legacyB, error);
    EXPECT_EQ(error.message().narrow(), "unhandled");
}

template<class Generation>
class Gelsd : public testing::Test {};
TYPED_TEST_SUITE(Gelsd, Generations, GenerationNames);

TYPED_TEST(Gelsd, RankDeficientMatrixHasAShortestSolution) {
    // Both columns are the same, so the shortest solution shares the mean between them.
    auto a = matrixOf<TypeParam>(3, 2, {1.0, 1.0, 1.0, 1.0, 1.0, 1.0});
    auto b = TypeParam::column({1.0, 2.0, 6.0});
    ASSERT_EQ(TypeParam::gelsd(a, b, -1.0), success);
    EXPECT_TRUE(within(1e-14, leading(valuesOf(b), 2), std::vector<double>{1.5, 1.5}));

    auto zeros = matrixOf<TypeParam>(3, 2, std::vector<double>(6, 0.0));
    auto c = TypeParam::column({1.0, 2.0, 6.0});
    ASSERT_EQ(TypeParam::gelsd(zeros, c, 0.0), success);
    EXPECT_TRUE(within(0.0, leading(valuesOf(c), 2), std::vector<double>{0.0, 0.0}));
}

TYPED_TEST(Gelsd, ReciprocalConditionDecidesWhichSingularValuesCount) {
    std::vector<double> const diagonal = {4.0, 0.0, 0.0, 1e-3};
    for (auto const& [rcond, second] :
         {std::pair(1e-4, 1000.0), std::pair(1e-3, 0.0), std::pair(-1.0, 1000.0)}) {
        auto a = matrixOf<TypeParam>(2, 2, diagonal);
        auto b = TypeParam::column({4.0, 1.0});
        ASSERT_EQ(TypeParam::gelsd(a, b, rcond), success);
        EXPECT_TRUE(within(1e-12, valuesOf(b), std::vector<double>{1.0, second})) << rcond;
    }
}

template<class Generation>
class Gglse : public testing::Test {};
TYPED_TEST_SUITE(Gglse, Generations, GenerationNames);

/// The determinant of a matrix of small integers, exactly: fraction-free elimination after E. H. Bareiss,
/// Math. Comp. 22, 1968. The leading minors must not vanish.
long long determinant(std::vector<std::vector<long long>> m) {
    long long previous = 1;
    for (std::size_t k = 0; k + 1 < m.size(); ++k) {
        EXPECT_NE(m[k][k], 0);
        for (std::size_t i = k + 1; i < m.size(); ++i)
            for (std::size_t j = k + 1; j < m.size(); ++j)
                m[i][j] = (m[i][j] * m[k][k] - m[i][k] * m[k][j]) / previous;
        previous = m[k][k];
    }
    return m.back().back();
}

/// min ||c - A x|| subject to B x = d for integers: the normal equations with multipliers, by Cramer's rule.
std::vector<double> exactConstrainedFit(std::vector<std::vector<long long>> const& a,
                                        std::vector<std::vector<long long>> const& b,
                                        std::vector<long long> const& c, std::vector<long long> const& d) {
    std::size_t const n = a[0].size();
    std::size_t const order = n + b.size();
    std::vector<std::vector<long long>> system(order, std::vector<long long>(order, 0));
    std::vector<long long> right(order, 0);
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t r = 0; r < a.size(); ++r) {
            right[i] += a[r][i] * c[r];
            for (std::size_t j = 0; j < n; ++j)
                system[i][j] += a[r][i] * a[r][j];
        }
    for (std::size_t r = 0; r < b.size(); ++r) {
        right[n + r] = d[r];
        for (std::size_t j = 0; j < n; ++j)
            system[n + r][j] = system[j][n + r] = b[r][j];
    }
    std::vector<double> x;
    for (std::size_t j = 0; j < n; ++j) {
        std::vector<std::vector<long long>> replaced = system;
        for (std::size_t i = 0; i < order; ++i)
            replaced[i][j] = right[i];
        x.push_back(static_cast<double>(static_cast<long double>(determinant(replaced))
                                        / static_cast<long double>(determinant(system))));
    }
    return x;
}

std::vector<double> columnMajor(std::vector<std::vector<long long>> const& rows) {
    std::vector<double> elements;
    for (std::size_t j = 0; j < rows[0].size(); ++j)
        for (auto const& row : rows)
            elements.push_back(static_cast<double>(row[j]));
    return elements;
}

std::vector<double> asDoubles(std::vector<long long> const& values) {
    return std::vector<double>(values.begin(), values.end());
}

// A parabola through measurements at -2 … 3.
std::vector<std::vector<long long>> const parabola = {{1, -2, 4}, {1, -1, 1}, {1, 0, 0},
                                                      {1, 1, 1},  {1, 2, 4},  {1, 3, 9}};
std::vector<long long> const heights = {7, 3, 1, 2, 4, 11};

TYPED_TEST(Gglse, MatchesTheExactSolution) {
    // One constraint: the value at 5. Two: the slope at 1 as well.
    for (auto const& [constraints, values] :
         {std::pair<std::vector<std::vector<long long>>, std::vector<long long>>({{1, 5, 25}}, {20}),
          {{{1, 5, 25}, {0, 1, 2}}, {20, 3}}}) {
        auto a = matrixOf<TypeParam>(6, 3, columnMajor(parabola));
        auto b = matrixOf<TypeParam>(constraints.size(), 3, columnMajor(constraints));
        auto c = TypeParam::column(asDoubles(heights));
        auto d = TypeParam::column(asDoubles(values));
        auto const x = TypeParam::gglse(a, b, c, d);
        ASSERT_EQ(x.second, success);
        EXPECT_TRUE(
            within(1e-13, valuesOf(*x.first), exactConstrainedFit(parabola, constraints, heights, values)));
        EXPECT_EQ(x.first->columns(), 1u);
    }
}

TYPED_TEST(Gglse, ConsistentProblemIsSolvedForWhatItWasMadeFrom) {
    auto a = matrixOf<TypeParam>(2, 2, {1.0, 0.0, 0.0, 1.0});
    auto b = matrixOf<TypeParam>(1, 2, {1.0, 1.0});
    auto c = TypeParam::column({3.0, 4.0});
    auto d = TypeParam::column({7.0});
    auto const x = TypeParam::gglse(a, b, c, d);
    ASSERT_EQ(x.second, success);
    EXPECT_TRUE(within(1e-14, valuesOf(*x.first), std::vector<double>{3.0, 4.0}));
}

TYPED_TEST(Gglse, LongerVectorsAreReadInPart) {
    auto a = matrixOf<TypeParam>(2, 2, {1.0, 0.0, 0.0, 1.0});
    auto b = matrixOf<TypeParam>(1, 2, {1.0, 1.0});
    auto c = TypeParam::column({3.0, 4.0, nan, nan});
    auto d = TypeParam::row({7.0, nan});
    auto const x = TypeParam::gglse(a, b, c, d);
    ASSERT_EQ(x.second, success);
    EXPECT_TRUE(within(1e-14, valuesOf(*x.first), std::vector<double>{3.0, 4.0}));
}

struct ConstrainedShape {
    std::size_t m;
    std::size_t n;
    std::size_t p;
    std::size_t columnsOfB;
    std::size_t lengthOfC;
    std::size_t lengthOfD;
};

/// How a problem of the given sizes ends that fails before the numbers count: nothing may be touched.
template<class Generation>
Report reportOfWrongShape(ConstrainedShape const& shape) {
    std::vector<double> const elementsOfA = ordinaryValues(shape.m * shape.n, 1);
    std::vector<double> const elementsOfB = ordinaryValues(shape.p * shape.columnsOfB, 2);
    auto a = matrixOf<Generation>(shape.m, shape.n, elementsOfA);
    auto b = matrixOf<Generation>(shape.p, shape.columnsOfB, elementsOfB);
    auto c = Generation::column(ordinaryValues(shape.lengthOfC, 3));
    auto d = Generation::column(ordinaryValues(shape.lengthOfD, 4));
    auto const x = silently([&] { return Generation::gglse(a, b, c, d); });
    EXPECT_TRUE(sameBits(elementsOf(a), elementsOfA));
    EXPECT_TRUE(sameBits(elementsOf(b), elementsOfB));
    EXPECT_TRUE(sameBits(valuesOf(c), ordinaryValues(shape.lengthOfC, 3)));
    EXPECT_TRUE(sameBits(valuesOf(d), ordinaryValues(shape.lengthOfD, 4)));
    EXPECT_TRUE(!x.first || x.first->length() == 0); // the legacy generation gives an empty vector
    return x.second;
}

TYPED_TEST(Gglse, EachShapeThatDoesNotFitIsRefusedAndNothingTouched) {
    auto const refused = [](ConstrainedShape const& shape) {
        return reportOfWrongShape<TypeParam>(shape);
    };
    EXPECT_EQ(refused({0, 3, 1, 3, 4, 1}), failure(InvalidParameter));
    EXPECT_EQ(refused({4, 0, 1, 3, 4, 1}), failure(InvalidParameter)); // looked at before the columns
    EXPECT_EQ(refused({4, 3, 1, 2, 4, 1}), failure(DimensionsMismatch));
    EXPECT_EQ(refused({4, 3, 1, 4, 4, 1}), failure(DimensionsMismatch));
    EXPECT_EQ(refused({4, 3, 1, 3, 3, 1}), failure(DimensionsMismatch));
    EXPECT_EQ(refused({4, 3, 2, 3, 4, 1}), failure(DimensionsMismatch));
    EXPECT_EQ(refused({4, 3, 4, 3, 4, 4}), failure(InvalidParameter)); // more constraints than unknowns
    EXPECT_EQ(refused({1, 3, 1, 3, 1, 1}), failure(InvalidParameter)); // too few equations for the unknowns
    EXPECT_EQ(refused({4, 3, 0, 3, 4, 0}),
              failure(InvalidParameter)); // no constraint: B has no leading dimension
}

TYPED_TEST(Gglse, DependentConstraintsAreToldFromAnUndeterminedSystem) {
    auto a = matrixOf<TypeParam>(6, 3, columnMajor(parabola));
    auto b = matrixOf<TypeParam>(2, 3, {0.0, 1.0, 0.0, 5.0, 0.0, 25.0}); // the first row is zero
    auto c = TypeParam::column(asDoubles(heights));
    auto d = TypeParam::column({0.0, 20.0});
    auto const dependent = silently([&] { return TypeParam::gglse(a, b, c, d); });
    EXPECT_EQ(dependent.second, failure(ConstraintRankDeficient));
    EXPECT_TRUE(!dependent.first || dependent.first->length() == 0);

    auto undetermined =
        matrixOf<TypeParam>(2, 3, {1.0, 0.0, 0.0, 1.0, 0.0, 0.0}); // nothing fixes the last unknown
    auto fixed = matrixOf<TypeParam>(1, 3, {1.0, 0.0, 0.0});
    auto e = TypeParam::column({1.0, 2.0});
    auto f = TypeParam::column({3.0});
    auto const loose = silently([&] { return TypeParam::gglse(undetermined, fixed, e, f); });
    EXPECT_EQ(loose.second, failure(SystemRankDeficient));
    EXPECT_TRUE(!loose.first || loose.first->length() == 0);
}

TEST(LegacyLAPACK, SuccessLeavesTheErrorAsItIs) {
    ErrorCode error =
        System::ErrorBuilder<LinearAlgebraErrorCode>::make(LinearAlgebraErrorCode::MatrixSingular);
    auto const identity = [] {
        return matrixOf<Legacy>(2, 2, {1.0, 0.0, 0.0, 1.0});
    };
    Matrix a = identity();
    Matrix b = matrixOf<Legacy>(1, 2, {1.0, 1.0});
    Vector c{1.0, 2.0};
    Vector d{3.0};
    LAPACK::gesv(a, c, error);
    a = identity();
    LAPACK::gels(NoTranspose, a, c, error);
    a = identity();
    LAPACK::gelsd(a, c, error, 0.0);
    a = identity();
    EXPECT_EQ(LAPACK::gglse(a, b, c, d, error).length(), 2u);
    EXPECT_EQ(reportOf(error), failure(MatrixSingular));
}

/// A least-squares problem that needs more workspace than `smallAllocations` grants.
constexpr std::size_t smallAllocations = 256;
constexpr std::size_t manyRows = 200;
constexpr std::size_t manyColumns = 20;

TEST(LegacyLAPACK, FailedAllocationIsDescribedInTheError) {
    if (!FailingAllocations::areSupported())
        GTEST_SKIP() << "the sanitizers' heap cannot be made to fail";
    Matrix a = matrixOf<Legacy>(manyRows, manyColumns, ordinaryValues(manyRows * manyColumns));
    Matrix b = matrixOf<Legacy>(1, manyColumns, ordinaryValues(manyColumns));
    Vector c(ordinaryValues(manyRows));
    Vector d{1.0};
    ErrorCode ofGels;
    ErrorCode ofGelsd;
    ErrorCode ofGglse;
    Vector x{1.0};
    {
        FailingAllocations const failing(smallAllocations);
        LAPACK::gels(NoTranspose, a, c, ofGels);
        LAPACK::gelsd(a, c, ofGelsd, 0.0);
        x = LAPACK::gglse(a, b, c, d, ofGglse);
    }
    for (ErrorCode const* error : {&ofGels, &ofGelsd, &ofGglse}) {
        EXPECT_TRUE(error->hasError());
        EXPECT_FALSE(error->isUnknown());
        EXPECT_EQ(error->code(), -1);
        EXPECT_EQ(error->category(), nullptr);
        EXPECT_EQ(error->message().narrow(), std::bad_alloc().what());
    }
    EXPECT_EQ(x.length(), 0u);
    EXPECT_TRUE(sameBits(valuesOf(c), ordinaryValues(manyRows)));
}

TEST(CurrentLAPACK, FailedAllocationIsReturned) {
    if (!FailingAllocations::areSupported())
        GTEST_SKIP() << "the sanitizers' heap cannot be made to fail";
    Matrix2 a = matrixOf<Current>(manyRows, manyColumns, ordinaryValues(manyRows * manyColumns));
    Matrix2 b = matrixOf<Current>(1, manyColumns, ordinaryValues(manyColumns));
    Vector2 c = Current::column(ordinaryValues(manyRows));
    Vector2 d = Current::column({1.0});
    Report reports[3] = {success, success, success};
    {
        FailingAllocations const failing(smallAllocations);
        reports[0] = Current::gels(NoTranspose, a, c);
        reports[1] = Current::gelsd(a, c, 0.0);
        reports[2] = Current::gglse(a, b, c, d).second;
    }
    for (Report const& report : reports)
        EXPECT_EQ(report, reportOf(System::guard<void>([] { throw std::bad_alloc(); })));
    EXPECT_TRUE(sameBits(valuesOf(c), ordinaryValues(manyRows)));
}

TEST(LAPACK, ThreadsSolveIndependently) {
    constexpr std::size_t threadCount = 4;
    std::vector<int> failures(threadCount, 0);
    {
        std::vector<std::jthread> threads;
        for (std::size_t t = 0; t < threadCount; ++t)
            threads.emplace_back([&failures, t] {
                CertifiedProblem const problem = t % 2 == 0 ? longley() : norris();
                for (int i = 0; i < 20; ++i)
                    for (Driver const driver : drivers) {
                        auto a = matrixOf<Current>(problem.rows, problem.columns, problem.model);
                        auto b = Current::column(problem.measurements);
                        failures[t] += leastSquares<Current>(driver, a, b) != success;
                        failures[t] +=
                            !within(1e-8 * std::abs(problem.coefficients[0]), b[0], problem.coefficients[0]);
                    }
            });
    }
    EXPECT_EQ(failures, std::vector<int>(threadCount, 0));
}

/// The lines of a Matrix Market file that are no comments, as one stream; the first of them holds the sizes.
std::istringstream matrixMarket(std::string const& path) {
    std::ifstream file(path);
    std::string text;
    for (std::string line; std::getline(file, line);)
        if (!line.starts_with('%'))
            text += line + '\n';
    return std::istringstream(text);
}

TYPED_TEST(CheckedGesv, CircuitEquationsHaveASmallBackwardError) {
    std::string const folder = TVNMATH_SHARED_DATA;
    std::istringstream entries = matrixMarket(folder + "/oscil_dcop_01.mtx");
    std::istringstream right = matrixMarket(folder + "/oscil_dcop_01_b.mtx");
    std::size_t n = 0;
    std::size_t columns = 0;
    std::size_t count = 0;
    if (!(entries >> n >> columns >> count))
        GTEST_SKIP() << "no folder of shared data was configured";
    ASSERT_EQ(n, columns);
    std::vector<double> a(n * n, 0.0);
    for (std::size_t i = 0, row = 0, column = 0; i < count; ++i) {
        ASSERT_TRUE(entries >> row >> column);
        ASSERT_TRUE(entries >> a.at(row - 1 + (column - 1) * n));
    }
    std::size_t rows = 0;
    ASSERT_TRUE(right >> rows >> columns);
    ASSERT_EQ(rows, n);
    std::vector<double> b(n);
    for (double& element : b)
        ASSERT_TRUE(right >> element);

    auto factors = matrixOf<TypeParam>(n, n, a);
    auto x = TypeParam::column(b);
    ASSERT_EQ(TypeParam::checkedGesv(factors, x), success);
    EXPECT_LE(backwardError(n, a, valuesOf(x), b), 4.0);
}

} // namespace

} // namespace Tervane::Math::LinearAlgebraTest

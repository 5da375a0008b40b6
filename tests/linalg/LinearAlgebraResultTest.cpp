#include "kit/Bits.h"
#include "linalg/Generations.h"

#include <Math/LinearAlgebraResult.h>
#include <Math/ViewVector.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tervane::Math::LinearAlgebraTest {

namespace {

using System::ErrorCode;
using TestKit::sameBits;

ErrorCode singular() {
    return System::ErrorBuilder<LinearAlgebraErrorCode>::make(LinearAlgebraErrorCode::MatrixSingular);
}

/// Two solutions of three unknowns and their four residuals.
LinearAlgebraResult twoSolutions() {
    return LinearAlgebraResult(matrixOf<Legacy>(3, 2, {1.0, 2.0, 3.0, 4.0, 5.0, 6.0}),
                               matrixOf<Legacy>(4, 2, {1.0, -1.0, 2.0, 0.0, 0.5, 0.5, 0.5, 0.5}),
                               ErrorCode());
}

LinearAlgebraResult oneSolution() {
    return LinearAlgebraResult(Vector{1.0, 2.0}, Vector{3.0, 4.0}, ErrorCode());
}

TEST(LinearAlgebraResult, MovesAndIsNotCopied) {
    static_assert(std::is_base_of_v<System::Object, LinearAlgebraResult>);
    static_assert(std::has_virtual_destructor_v<LinearAlgebraResult>);
    static_assert(!std::is_copy_constructible_v<LinearAlgebraResult>);
    static_assert(!std::is_copy_assignable_v<LinearAlgebraResult>);

    LinearAlgebraResult first = twoSolutions();
    double const* const elements = first.solution(0).data();
    LinearAlgebraResult second(std::move(first));
    EXPECT_EQ(second.solution(0).data(), elements);
    LinearAlgebraResult third = oneSolution();
    third = std::move(second);
    EXPECT_EQ(third.numberSolutions(), 2u);
    EXPECT_EQ(third.solution(0).data(), elements);
}

TEST(LinearAlgebraResult, FailureAloneIsOneEmptySolution) {
    LinearAlgebraResult result(singular());
    EXPECT_TRUE(result.hasError());
    EXPECT_EQ(reportOf(result.error()), failure(MatrixSingular));
    EXPECT_EQ(result.numberSolutions(), 1u);
    EXPECT_TRUE(sameBits(result.rss(0), 0.0));
    EXPECT_EQ(result.solution(0).rows(), 0u);
    EXPECT_EQ(result.residuals(3).rows(), 0u);

    LinearAlgebraResult const fine{ErrorCode()};
    EXPECT_FALSE(fine.hasError());
    EXPECT_FALSE(fine.error().hasError());
}

TEST(LinearAlgebraResult, KeepsTheErrorBesideTheSolutions) {
    LinearAlgebraResult const vector(Vector{1.0}, Vector{2.0}, singular());
    LinearAlgebraResult const matrix(Matrix(1, 1, 1.0), Matrix(1, 1, 2.0), singular());
    for (LinearAlgebraResult const* result : {&vector, &matrix}) {
        EXPECT_TRUE(result->hasError());
        EXPECT_EQ(reportOf(result->error()), failure(MatrixSingular));
        EXPECT_EQ(result->rss(0), 4.0);
    }
}

TEST(LinearAlgebraResult, TakesOverWhatItIsGiven) {
    Matrix solutions(3, 2, 1.0);
    Matrix residuals(4, 2, 1.0);
    double const* const elementsOfSolutions = std::as_const(solutions).data();
    double const* const elementsOfResiduals = std::as_const(residuals).data();
    LinearAlgebraResult result(std::move(solutions), std::move(residuals), ErrorCode());
    EXPECT_EQ(result.solution(0).data(), elementsOfSolutions);
    EXPECT_EQ(result.residuals(0).data(), elementsOfResiduals);
}

TEST(LinearAlgebraResult, ViewsTheColumnsInPlace) {
    LinearAlgebraResult result = twoSolutions();
    EXPECT_EQ(result.numberSolutions(), 2u);
    EXPECT_TRUE(sameBits(valuesOf(result.solution(0)), std::vector<double>{1.0, 2.0, 3.0}));
    EXPECT_TRUE(sameBits(valuesOf(result.solution(1)), std::vector<double>{4.0, 5.0, 6.0}));
    EXPECT_EQ(result.solution(1).data(), result.solution(0).data() + 3);
    EXPECT_EQ(result.solution(1).orientation(), Column);
    EXPECT_TRUE(sameBits(valuesOf(result.residuals(1)), std::vector<double>(4, 0.5)));
}

TEST(LinearAlgebraResult, IndexIsIgnoredForASingleSolution) {
    LinearAlgebraResult result = oneSolution();
    EXPECT_EQ(result.numberSolutions(), 1u);
    for (std::size_t const i : {0u, 1u, 7u}) {
        EXPECT_TRUE(sameBits(valuesOf(result.solution(i)), std::vector<double>{1.0, 2.0}));
        EXPECT_TRUE(sameBits(valuesOf(result.residuals(i)), std::vector<double>{3.0, 4.0}));
        EXPECT_EQ(result.solution(i).data(), result.solution(0).data());
        EXPECT_EQ(result.rss(i), 25.0);
    }
}

TEST(LinearAlgebraResult, SumsTheSquaresOfTheChosenColumn) {
    LinearAlgebraResult const result = twoSolutions();
    EXPECT_EQ(result.rss(0), 6.0);
    EXPECT_EQ(result.rss(1), 1.0);
}

TEST(LinearAlgebraResult, SumsFromTheFirstToTheLastWithoutScaling) {
    // Any other order or a compensated sum would keep the ones.
    LinearAlgebraResult const absorbed(Vector(), Vector{0x1p27, 1.0, 1.0, 1.0}, ErrorCode());
    EXPECT_EQ(absorbed.rss(0), 0x1p54);
    LinearAlgebraResult const kept(Vector(), Vector{1.0, 1.0, 1.0, 1.0, 0x1p27}, ErrorCode());
    EXPECT_EQ(kept.rss(0), 0x1p54 + 4.0);
    LinearAlgebraResult const large(Vector(), Vector{1e200}, ErrorCode());
    EXPECT_EQ(large.rss(0), std::numeric_limits<double>::infinity());
    LinearAlgebraResult const notANumber(Vector(), Vector{1.0, std::numeric_limits<double>::quiet_NaN()},
                                         ErrorCode());
    EXPECT_TRUE(std::isnan(notANumber.rss(0)));
}

TEST(LinearAlgebraResult, EmptyResidualsSumToZero) {
    LinearAlgebraResult const vector(Vector{1.0}, Vector(), ErrorCode());
    EXPECT_TRUE(sameBits(vector.rss(0), 0.0));
    LinearAlgebraResult const row(Vector{1.0}, LegacyTest::rowOf({}), ErrorCode());
    EXPECT_TRUE(sameBits(row.rss(0), 0.0));
    LinearAlgebraResult const matrix(Matrix(3, 2, 1.0), Matrix(0, 2, 0.0), ErrorCode());
    EXPECT_TRUE(sameBits(matrix.rss(1), 0.0));
    EXPECT_EQ(matrix.numberSolutions(), 2u);
}

TEST(LinearAlgebraResult, EmptyMatrixHoldsNoSolutions) {
    LinearAlgebraResult const result{Matrix(), Matrix(), ErrorCode()};
    EXPECT_EQ(result.numberSolutions(), 0u);
    LinearAlgebraResult const empty{Vector(), Vector(), ErrorCode()};
    EXPECT_EQ(empty.numberSolutions(), 1u);
}

} // namespace

} // namespace Tervane::Math::LinearAlgebraTest

// The products and solves: both generations bit for bit alike, products against sums in extended precision,
// solutions by what is left over, and the error that each shape is to give.

#include "fuzz/Fuzz.h"

#include <Math/BLAS.h>
#include <Math/Errors.h>
#include <Math/LAPACK.h>
#include <Math/Matrix.h>
#include <Math/Matrix2.h>
#include <Math/Vector.h>
#include <Math/Vector2.h>

#include <algorithm>
#include <utility>

namespace Tervane::Math::Fuzz {

namespace {

using System::ErrorCode;
using System::ErrorCode2;
using TestKit::elementsOf;
using TestKit::sameBits;

constexpr double unitRoundoff = 0x1p-53;

/// Column after column.
struct Table {
    std::size_t rows;
    std::size_t columns;
    std::vector<double> elements;

    double at(std::size_t r, std::size_t c) const { return elements[r + c * rows]; }

    Matrix2 current() const {
        Matrix2 m(rows, columns, 0.0);
        std::copy(elements.begin(), elements.end(), m.data());
        return m;
    }

    Matrix legacy() const {
        Matrix m(rows, columns, 0.0);
        std::copy(elements.begin(), elements.end(), m.data());
        return m;
    }

    double norm() const {
        double sum = 0.0;
        for (double const x : elements)
            sum += x * x;
        return std::sqrt(sum);
    }
};

Table tableOf(Input& input, std::size_t rows, std::size_t columns) {
    // Small integers give singular matrices now and then.
    bool const isInteger = input.flag();
    Table t{rows, columns, input.ordinaryValues(rows * columns)};
    if (isInteger)
        for (double& x : t.elements)
            x = std::trunc(std::fmod(x, 3.0));
    return t;
}

std::span<double const> elementsOfMatrix(auto const& m) {
    return {m.data(), m.rows() * m.columns()};
}

Vector2 currentOf(std::vector<double> const& values) {
    return Vector2(values.data(), values.size());
}

double norm(std::span<double const> values) {
    double sum = 0.0;
    for (double const x : values)
        sum += x * x;
    return std::sqrt(sum);
}

/// b - A x over the first columns of x.
std::vector<double> residual(Table const& a, std::span<double const> x, std::span<double const> b) {
    std::vector<double> result(a.rows);
    for (std::size_t r = 0; r < a.rows; ++r) {
        long double left = b[r];
        for (std::size_t c = 0; c < a.columns; ++c)
            left -= static_cast<long double>(a.at(r, c)) * static_cast<long double>(x[c]);
        result[r] = static_cast<double>(left);
    }
    return result;
}

Table transposed(Table const& a) {
    Table result{a.columns, a.rows, {}};
    for (std::size_t r = 0; r < a.rows; ++r)
        for (std::size_t c = 0; c < a.columns; ++c)
            result.elements.push_back(a.at(r, c));
    return result;
}

/// The same error in both generations, or none in either.
void requireSameOutcome(bool hasValue, ErrorCode2 const* error, ErrorCode const& legacy) {
    require(hasValue != legacy.hasError(), "both generations fail or none");
    if (!hasValue)
        require(error->code() == legacy.code(), "both generations give the same code");
}

constexpr std::array transposes = {NoTranspose, Transposed, ConjugateTransposed};

bool isError(auto const& result, LinearAlgebraErrc code) {
    return !result && result.error() == ErrorCode2(code);
}

void matrixProduct(Input& input) {
    Transpose const transA = input.oneOf(transposes);
    Transpose const transB = input.oneOf(transposes);
    std::size_t const m = input.below(7);
    std::size_t const k = input.below(7);
    std::size_t const n = input.below(7);
    std::size_t const misfit = input.below(8) == 0 ? 1 : 0;
    Table const a = transA == NoTranspose ? tableOf(input, m, k) : tableOf(input, k, m);
    Table const b = transB == NoTranspose ? tableOf(input, k + misfit, n) : tableOf(input, n, k + misfit);
    std::size_t const excess = input.below(8) == 0 ? 1 : 0;
    Table const c = tableOf(input, m, n + excess);
    double const alpha = input.ordinaryValue();
    double const beta = input.flag() ? 0.0 : input.ordinaryValue();

    Matrix2 current = c.current();
    auto const result = BLAS::gemm(transA, transB, alpha, a.current(), b.current(), beta, current);
    Matrix legacy = c.legacy();
    ErrorCode error;
    require(&BLAS::gemm(transA, transB, alpha, a.legacy(), b.legacy(), beta, legacy, error) == &legacy,
            "a legacy product gives its receiver");
    require(sameBits(elementsOfMatrix(current), elementsOfMatrix(legacy)), "both generations' products");
    requireSameOutcome(result.has_value(), result ? nullptr : &result.error(), error);
    if (misfit + excess != 0) {
        require(isError(result, DimensionsMismatch), "the error of shapes that do not fit");
        require(sameBits(elementsOfMatrix(current), c.elements),
                "a refused product leaves its receiver alone");
        return;
    }
    require(result.has_value() && *result == &current, "a product gives its receiver");
    if (k == 0 && (a.rows == 0 || b.rows == 0)) {
        // The routine takes no table without rows, and callers are told nothing.
        require(sameBits(elementsOfMatrix(current), c.elements), "a product that the routine refuses");
        return;
    }
    for (std::size_t r = 0; r < m; ++r)
        for (std::size_t col = 0; col < n; ++col) {
            long double expected = static_cast<long double>(beta) * c.at(r, col);
            long double size = std::abs(expected);
            for (std::size_t i = 0; i < k; ++i) {
                long double const term = static_cast<long double>(alpha)
                                         * (transA == NoTranspose ? a.at(r, i) : a.at(i, r))
                                         * (transB == NoTranspose ? b.at(i, col) : b.at(col, i));
                expected += term;
                size += std::abs(term);
            }
            require(std::abs(static_cast<long double>(current[Index(r, col)]) - expected)
                        <= 4.0L * static_cast<long double>(k + 3) * unitRoundoff * size,
                    "a product is within its bound");
        }
    auto const fresh = BLAS::gemm(transA, transB, a.current(), b.current());
    ErrorCode freshError;
    Matrix const legacyFresh = BLAS::gemm(transA, transB, a.legacy(), b.legacy(), freshError);
    require(fresh.has_value() && !freshError.hasError() && fresh->rows() == m && fresh->columns() == n,
            "a product makes its receiver");
    require(sameBits(elementsOfMatrix(*fresh), elementsOfMatrix(legacyFresh)),
            "both generations' fresh products");
    if (transA == NoTranspose && transB == NoTranspose) {
        Matrix const multiplied = a.legacy().multiply(b.legacy(), freshError);
        require(sameBits(elementsOfMatrix(multiplied), elementsOfMatrix(legacyFresh)),
                "multiply is the product");
    }
}

void vectorProduct(Input& input) {
    Transpose const trans = input.oneOf(transposes);
    Table const a = tableOf(input, 1 + input.below(6), 1 + input.below(6));
    Table const op = trans == NoTranspose ? a : transposed(a);
    std::vector<double> const x = input.ordinaryValues(op.columns + input.below(2));
    std::vector<double> const y = input.ordinaryValues(op.rows + input.below(2));
    double const alpha = input.ordinaryValue();
    double const beta = input.flag() ? 0.0 : input.ordinaryValue();

    Vector2 current = currentOf(y);
    auto const result = BLAS::gemv(trans, alpha, a.current(), currentOf(x), beta, current);
    Vector legacy(y);
    ErrorCode error;
    BLAS::gemv(trans, alpha, a.legacy(), Vector(x), beta, legacy, error);
    require(sameBits(elementsOf(current), elementsOf(legacy)), "both generations' products with a vector");
    requireSameOutcome(result.has_value(), result ? nullptr : &result.error(), error);
    if (result) {
        for (std::size_t r = 0; r < op.rows; ++r) {
            long double expected = static_cast<long double>(beta) * y[r];
            long double size = std::abs(expected);
            for (std::size_t c = 0; c < op.columns; ++c) {
                long double const term = static_cast<long double>(alpha) * op.at(r, c) * x[c];
                expected += term;
                size += std::abs(term);
            }
            require(std::abs(static_cast<long double>(current[r]) - expected)
                        <= 4.0L * static_cast<long double>(op.columns + 3) * unitRoundoff * size,
                    "a product with a vector is within its bound");
        }
        for (std::size_t r = op.rows; r < y.size(); ++r)
            require(sameBits(current[r], y[r]), "a longer receiver keeps its tail");
    }
}

/// Backward stable: (A + E) x = b with E of the size of a few roundings of A, times the growth of the
/// elimination.
void squareSolve(Input& input) {
    std::size_t const n = 1 + input.below(6);
    Table const a = tableOf(input, n, n + (input.below(8) == 0 ? 1 : 0));
    std::vector<double> const b = input.ordinaryValues(n);
    Matrix2 factors = a.current();
    Vector2 x = currentOf(b);
    auto const result = LAPACK::gesv(factors, x);
    Matrix legacyFactors = a.legacy();
    Vector legacyX(b);
    ErrorCode error;
    LAPACK::gesv(legacyFactors, legacyX, error);
    require(result.has_value() != error.hasError(), "both generations solve or none");
    require(sameBits(elementsOf(x), elementsOf(legacyX)), "both generations' solutions");
    require(sameBits(elementsOfMatrix(factors), elementsOfMatrix(legacyFactors)),
            "both generations' factors");
    if (a.columns != n) {
        require(result.error() == ErrorCode2(-1, System::system_error_category())
                    && error.code() == static_cast<int>(LinearAlgebraErrorCode::MatrixNotSquare),
                "the errors of a matrix that is not square");
        return;
    }
    if (!result) {
        require(isError(result, SolutionNotComputed), "the error of a singular matrix");
        return;
    }
    double const bound = 1e4 * unitRoundoff * (a.norm() * norm(elementsOf(x)) + norm(b));
    require(norm(residual(a, elementsOf(x), b)) <= bound, "a solution satisfies its equations");

    Matrix2 unchecked = a.current();
    Matrix2 right(n, 1, 0.0);
    std::copy(b.begin(), b.end(), right.data());
    require(BLAS::gesv(unchecked, right).has_value() && sameBits(elementsOfMatrix(right), elementsOf(x)),
            "the unchecked solve is the same");
}

/// Backward stable: what is left over is at right angles to the columns, within roundings.
void leastSquares(Input& input) {
    std::size_t const rows = 1 + input.below(7);
    std::size_t const columns = 1 + input.below(7);
    bool const byValues = input.flag();
    Transpose const trans = byValues ? NoTranspose : input.oneOf(std::array{NoTranspose, Transposed});
    Table const a = tableOf(input, rows, columns);
    Table const op = trans == NoTranspose ? a : transposed(a);
    std::vector<double> b = input.ordinaryValues(std::max(rows, columns));
    bool const isShort = b.size() > 1 && input.below(8) == 0;
    if (isShort)
        b.pop_back();
    double const rcond = 1e-12;

    Matrix2 factors = a.current();
    Vector2 x = currentOf(b);
    auto const result = byValues ? LAPACK::gelsd(factors, x, rcond) : LAPACK::gels(trans, factors, x);
    Matrix legacyFactors = a.legacy();
    Vector legacyX(b);
    ErrorCode error;
    if (byValues)
        LAPACK::gelsd(legacyFactors, legacyX, error, rcond);
    else
        LAPACK::gels(trans, legacyFactors, legacyX, error);
    requireSameOutcome(result.has_value(), result ? nullptr : &result.error(), error);
    require(sameBits(elementsOf(x), elementsOf(legacyX)), "both generations' least squares");
    if (isShort) {
        require(isError(result, InvalidParameter), "the error of a short right-hand side");
        return;
    }
    if (!result) {
        require(!byValues && isError(result, LeastSquaresFailed),
                "only a matrix without full rank fails, and by gels only");
        return;
    }
    std::vector<double> const left = residual(op, elementsOf(x), b);
    std::vector<double> const projected =
        residual(transposed(op), left, std::vector<double>(op.columns, 0.0));
    double const size = op.norm() * (op.norm() * norm(elementsOf(x).first(op.columns)) + norm(b));
    // gels without full rank may fail to notice it; the values below rcond that gelsd drops are that small.
    if (byValues)
        require(norm(projected) <= 1e-10 * size, "what is left over is at right angles to the columns");
    else
        require(norm(projected) <= 1e4 * unitRoundoff * size,
                "what is left over is at right angles to the columns");
}

void constrainedLeastSquares(Input& input) {
    std::size_t const columns = input.below(6);
    Table const a = tableOf(input, input.below(7), columns);
    Table const b = tableOf(input, input.below(4), columns + (input.below(8) == 0 ? 1 : 0));
    std::size_t const shorter = input.below(8) == 0 ? 1 : 0;
    std::vector<double> const c = input.ordinaryValues(a.rows - std::min(a.rows, shorter));
    std::vector<double> const d = input.ordinaryValues(b.rows);

    Matrix2 currentA = a.current();
    Matrix2 currentB = b.current();
    Vector2 currentC = currentOf(c);
    Vector2 currentD = currentOf(d);
    auto const result = LAPACK::gglse(currentA, currentB, currentC, currentD);
    Matrix legacyA = a.legacy();
    Matrix legacyB = b.legacy();
    Vector legacyC(c);
    Vector legacyD(d);
    ErrorCode error;
    Vector const legacyX = LAPACK::gglse(legacyA, legacyB, legacyC, legacyD, error);
    requireSameOutcome(result.has_value(), result ? nullptr : &result.error(), error);
    if (a.rows == 0 || a.columns == 0) {
        require(isError(result, InvalidParameter), "the error of an empty matrix");
        return;
    }
    if (b.columns != a.columns || c.size() < a.rows) {
        require(isError(result, DimensionsMismatch), "the error of shapes that do not fit");
        return;
    }
    if (!result) {
        require(legacyX.length() == 0, "a legacy failure gives an empty vector");
        return;
    }
    require(sameBits(elementsOf(*result), elementsOf(legacyX)),
            "both generations' constrained least squares");
    require(result->length() == a.columns, "the length of a constrained solution");
    double const bound = 1e6 * unitRoundoff * (b.norm() * norm(elementsOf(*result)) + norm(d));
    require(norm(residual(b, elementsOf(*result), d)) <= bound,
            "a constrained solution satisfies its constraints");
}

} // namespace

void fuzzLinearAlgebra(Input& input) {
    switch (input.below(5)) {
    case 0:
        matrixProduct(input);
        break;
    case 1:
        vectorProduct(input);
        break;
    case 2:
        squareSolve(input);
        break;
    case 3:
        leastSquares(input);
        break;
    default:
        constrainedLeastSquares(input);
    }
}

} // namespace Tervane::Math::Fuzz

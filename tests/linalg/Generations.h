#pragma once

/// @file
/// The two generations of the linear algebra behind one face, so that a test that holds for both is written
/// once.

#include "legacy/Tables.h"

#include <Math/BLAS.h>
#include <Math/Errors.h>
#include <Math/LAPACK.h>
#include <Math/Matrix.h>
#include <Math/Vector.h>
#include <Math/VectorView2.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tervane::Math::LinearAlgebraTest {

/// How an operation ended, whatever the generation.
struct Report {
    enum class Kind { Success, LinearAlgebra, System, Other };

    Kind kind;
    int code;

    friend bool operator==(Report const&, Report const&) = default;
    friend std::ostream& operator<<(std::ostream& out, Report const& report) {
        constexpr char const* kinds[] = {"success", "linear algebra", "system", "other"};
        return out << kinds[static_cast<int>(report.kind)] << ' ' << report.code;
    }
};

inline constexpr Report success = {Report::Kind::Success, 0};

inline Report failure(LinearAlgebraErrc code) {
    return {Report::Kind::LinearAlgebra, code};
}

template<class T>
Report reportOf(System::Expected<T, System::ErrorCode2> const& result) {
    if (result)
        return success;
    System::ErrorCode2 const& error = result.error();
    if (&error.category() == &linear_algebra_error_category())
        return {Report::Kind::LinearAlgebra, error.code()};
    return {&error.category() == &System::system_error_category() ? Report::Kind::System
                                                                  : Report::Kind::Other,
            error.code()};
}

inline Report reportOf(System::ErrorCode const& error) {
    if (!error.hasError())
        return success;
    return {error.category() == &LinearAlgebraErrorCategory::get() ? Report::Kind::LinearAlgebra
                                                                   : Report::Kind::Other,
            error.code()};
}

/// The value of a result, if it holds one, and how the operation ended.
template<class T>
using Made = std::pair<std::optional<T>, Report>;

struct Current {
    using Matrix = Matrix2;
    using Vector = Vector2;

    static Vector column(std::vector<double> const& values) { return Vector(values.data(), values.size()); }
    static Vector row(std::vector<double> const& values) {
        return Vector(VectorView2(values.data(), values.size(), Row));
    }

    static Report gemm(Transpose transA, Transpose transB, double alpha, Matrix const& a, Matrix const& b,
                       double beta, Matrix& c) {
        return atAddress(BLAS::gemm(transA, transB, alpha, a, b, beta, c), c);
    }
    static Made<Matrix> gemm(Transpose transA, Transpose transB, double alpha, Matrix const& a,
                             Matrix const& b) {
        return made(BLAS::gemm(transA, transB, alpha, a, b));
    }
    static Made<Matrix> gemm(Transpose transA, Transpose transB, Matrix const& a, Matrix const& b) {
        return made(BLAS::gemm(transA, transB, a, b));
    }
    static Report gemv(Transpose trans, double alpha, Matrix const& a, Vector const& x, double beta,
                       Vector& y) {
        return atAddress(BLAS::gemv(trans, alpha, a, x, beta, y), y);
    }
    static Made<Vector> gemv(Transpose trans, double alpha, Matrix const& a, Vector const& x) {
        return made(BLAS::gemv(trans, alpha, a, x));
    }
    static Made<Vector> gemv(Transpose trans, Matrix const& a, Vector const& x) {
        return made(BLAS::gemv(trans, a, x));
    }
    template<class RightHandSide>
    static Report gesv(Matrix& a, RightHandSide& b) {
        return atAddress(BLAS::gesv(a, b), b);
    }

    static Report checkedGesv(Matrix& a, Vector& b) { return reportOf(LAPACK::gesv(a, b)); }
    static Report gels(Transpose trans, Matrix& a, Vector& b) { return reportOf(LAPACK::gels(trans, a, b)); }
    static Report gelsd(Matrix& a, Vector& b, double rcond) { return reportOf(LAPACK::gelsd(a, b, rcond)); }
    static Made<Vector> gglse(Matrix& a, Matrix& b, Vector& c, Vector& d) {
        return made(LAPACK::gglse(a, b, c, d));
    }

private:
    template<class T>
    static Report atAddress(System::Expected<T*, System::ErrorCode2> const& result, T& argument) {
        if (result) {
            EXPECT_EQ(result.value(), &argument);
        }
        return reportOf(result);
    }
    template<class T>
    static Made<T> made(System::Expected<T, System::ErrorCode2> const& result) {
        return {result ? std::optional<T>(result.value()) : std::nullopt, reportOf(result)};
    }
};

struct Legacy {
    using Matrix = Math::Matrix;
    using Vector = Math::Vector;

    static Vector column(std::vector<double> const& values) { return Vector(values); }
    static Vector row(std::vector<double> const& values) { return LegacyTest::rowOf(values); }

    static Report gemm(Transpose transA, Transpose transB, double alpha, Matrix const& a, Matrix const& b,
                       double beta, Matrix& c) {
        System::ErrorCode error;
        EXPECT_EQ(&BLAS::gemm(transA, transB, alpha, a, b, beta, c, error), &c);
        return reportOf(error);
    }
    static Made<Matrix> gemm(Transpose transA, Transpose transB, double alpha, Matrix const& a,
                             Matrix const& b) {
        System::ErrorCode error;
        Matrix c = BLAS::gemm(transA, transB, alpha, a, b, error);
        return {std::move(c), reportOf(error)};
    }
    static Made<Matrix> gemm(Transpose transA, Transpose transB, Matrix const& a, Matrix const& b) {
        System::ErrorCode error;
        Matrix c = BLAS::gemm(transA, transB, a, b, error);
        return {std::move(c), reportOf(error)};
    }
    static Report gemv(Transpose trans, double alpha, Matrix const& a, Vector const& x, double beta,
                       Vector& y) {
        System::ErrorCode error;
        EXPECT_EQ(&BLAS::gemv(trans, alpha, a, x, beta, y, error), &y);
        return reportOf(error);
    }
    static Made<Vector> gemv(Transpose trans, double alpha, Matrix const& a, Vector const& x) {
        System::ErrorCode error;
        Vector y = BLAS::gemv(trans, alpha, a, x, error);
        return {std::move(y), reportOf(error)};
    }
    static Made<Vector> gemv(Transpose trans, Matrix const& a, Vector const& x) {
        System::ErrorCode error;
        Vector y = BLAS::gemv(trans, a, x, error);
        return {std::move(y), reportOf(error)};
    }
    template<class RightHandSide>
    static Report gesv(Matrix& a, RightHandSide& b) {
        System::ErrorCode error;
        EXPECT_EQ(&BLAS::gesv(a, b, error), &b);
        return reportOf(error);
    }

    static Report checkedGesv(Matrix& a, Vector& b) {
        System::ErrorCode error;
        LAPACK::gesv(a, b, error);
        return reportOf(error);
    }
    static Report gels(Transpose trans, Matrix& a, Vector& b) {
        System::ErrorCode error;
        LAPACK::gels(trans, a, b, error);
        return reportOf(error);
    }
    static Report gelsd(Matrix& a, Vector& b, double rcond) {
        System::ErrorCode error;
        LAPACK::gelsd(a, b, error, rcond);
        return reportOf(error);
    }
    static Made<Vector> gglse(Matrix& a, Matrix& b, Vector& c, Vector& d) {
        System::ErrorCode error;
        Vector x = LAPACK::gglse(a, b, c, d, error);
        return {std::move(x), reportOf(error)};
    }
};

using Generations = testing::Types<Current, Legacy>;

struct GenerationNames {
    template<class Generation>
    static std::string GetName(int /*index*/) {
        return std::is_same_v<Generation, Current> ? "Current" : "Legacy";
    }
};

/// A matrix with the given elements, column after column.
template<class Generation>
typename Generation::Matrix matrixOf(std::size_t rows, std::size_t columns,
                                     std::vector<double> const& elements) {
    EXPECT_EQ(elements.size(), rows * columns);
    typename Generation::Matrix m(rows, columns, 0.0);
    std::copy(elements.begin(), elements.end(), m.data());
    return m;
}

/// The elements of a matrix of either generation, column after column.
template<class Matrix>
std::vector<double> elementsOf(Matrix const& m) {
    return std::vector<double>(m.data(), m.data() + m.rows() * m.columns());
}

/// The elements of a vector of either generation.
template<class Vector>
std::vector<double> valuesOf(Vector const& v) {
    return std::vector<double>(v.data(), v.data() + v.length());
}

/// ||b - A x|| / (||A|| ||x||) in units of the unit roundoff, in the maximum norm and in extended precision:
/// the size of the relative change to A of which x is the exact solution (J. L. Rigal and J. Gaches, J. ACM
/// 14, 1967).
inline double backwardError(std::size_t n, std::vector<double> const& a, std::vector<double> const& x,
                            std::vector<double> const& b) {
    long double residual = 0.0L;
    long double normOfA = 0.0L;
    long double normOfX = 0.0L;
    for (std::size_t i = 0; i < n; ++i) {
        long double difference = b[i];
        long double sum = 0.0L;
        for (std::size_t j = 0; j < n; ++j) {
            difference -= static_cast<long double>(a[i + j * n]) * static_cast<long double>(x[j]);
            sum += std::abs(static_cast<long double>(a[i + j * n]));
        }
        residual = std::max(residual, std::abs(difference));
        if (!(std::abs(difference) <= residual)) // not a number
            return static_cast<double>(difference);
        normOfA = std::max(normOfA, sum);
        normOfX = std::max(normOfX, std::abs(static_cast<long double>(x[i])));
    }
    return static_cast<double>(residual / (normOfA * normOfX) * 0x1p53L);
}

} // namespace Tervane::Math::LinearAlgebraTest

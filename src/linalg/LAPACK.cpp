#include "linalg/Failure.h"
#include "linalg/LinearSolve.h"
#include "linalg/OneMKL.h"
#include "linalg/Tables.h"

#include <Math/Detail/ElementArray.h>
#include <Math/LAPACK.h>
#include <Math/Matrix.h>
#include <Math/Vector.h>
#include <System/Guard.h>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <vector>

namespace Tervane::Math {

// The routines on plain memory, written once. Every driver is called twice: the first call only asks for the
// size of the workspace, which comes back as a floating number in the workspace's first element.

namespace {

using Detail::ElementsInOut;
using Detail::elementsOf;
using Detail::Failure;
using Detail::RealArray;
using Detail::TableInOut;
using Detail::tableOf;
namespace OneMKL = Detail::OneMKL;

/// Runs a driver that takes a workspace and its size: once for the size, and once for the work unless the
/// first call failed already.
template<class Driver>
OneMKL::Outcome runWithWorkspace(Driver const& driver) {
    RealArray work(1);
    OneMKL::Outcome const query = driver(work.data(), OneMKL::workspaceQuery);
    if (!query.isSuccess())
        return query;
    auto const length = static_cast<OneMKL::Integer>(work[0]);
    work.resize(static_cast<std::size_t>(length));
    return driver(work.data(), length);
}

Failure leastSquaresFailure(OneMKL::Outcome outcome) {
    if (outcome.isSuccess())
        return {};
    return outcome.isRefusal() ? InvalidParameter : LeastSquaresFailed;
}

/// What does not fit together in A x = b, if anything.
Failure shapeFailure(TableInOut const& a, ElementsInOut const& b) {
    if (a.rows != a.columns)
        return MatrixNotSquare;
    if (a.rows != b.rows)
        return DimensionsMismatch;
    return {};
}

Failure solve(TableInOut const& a, ElementsInOut const& b) {
    return Detail::solve(a.rows, 1, a.data, b.data);
}

Failure solveLeastSquares(Transpose trans, TableInOut const& a, ElementsInOut const& b) {
    return leastSquaresFailure(runWithWorkspace([&](double* work, OneMKL::Integer length) {
        return OneMKL::gels(trans, a.rows, a.columns, a.data, a.leadingDimension(), b.data, b.rows, work,
                            length);
    }));
}

Failure solveLeastNorm(TableInOut const& a, ElementsInOut const& b, double rcond) {
    RealArray singularValues(std::max<std::size_t>(std::min(a.rows, a.columns), 1));
    std::vector<OneMKL::Integer> integerWork(1);
    return leastSquaresFailure(runWithWorkspace([&](double* work, OneMKL::Integer length) {
        // The query leaves the size of the integer workspace in its first element.
        if (length != OneMKL::workspaceQuery)
            integerWork.resize(static_cast<std::size_t>(integerWork[0]));
        return OneMKL::gelsd(a.rows, a.columns, a.data, a.leadingDimension(), b.data, b.rows,
                             singularValues.data(), rcond, work, length, integerWork.data());
    }));
}

/// @param x room for a.columns elements
Failure solveConstrained(TableInOut const& a, TableInOut const& b, ElementsInOut const& c,
                         ElementsInOut const& d, double* x) {
    if (a.rows == 0 || a.columns == 0)
        return InvalidParameter;
    if (a.columns != b.columns || c.length < a.rows || d.length < b.rows)
        return DimensionsMismatch;
    OneMKL::Outcome const outcome = runWithWorkspace([&](double* work, OneMKL::Integer length) {
        return OneMKL::gglse(a.rows, a.columns, b.rows, a.data, a.leadingDimension(), b.data,
                             b.leadingDimension(), c.data, d.data, x, work, length);
    });
    switch (outcome.info) {
    case 0:
        return {};
    case 1:
        return ConstraintRankDeficient;
    case 2:
        return SystemRankDeficient;
    default:
        return InvalidParameter;
    }
}

/// Runs the body of a legacy operation, which throws a bare LinearAlgebraErrorCode on failure, and stores
/// what it throws.
template<class Body>
void reporting(System::ErrorCode& error, Body const& body) {
    try {
        body();
    } catch (LinearAlgebraErrorCode code) {
        error.assign(System::ErrorBuilder<LinearAlgebraErrorCode>::make(code));
    } catch (std::exception const& exception) {
        error.assign(exception);
    } catch (...) {
        error.assignUnknown();
    }
}

void raiseLegacy(Failure const& failure) {
    if (failure)
        throw static_cast<LinearAlgebraErrorCode>(*failure);
}

} // namespace

namespace LAPACK {

System::Expected<void, System::ErrorCode2> gesv(Matrix2& A, Vector2& b) {
    return System::guard<void>([&] {
        // The bare enumerator is no exception that the guard knows, so callers see the error -1 of the system
        // category for a wrong shape, and rely on it.
        if (Failure const failure = shapeFailure(tableOf(A), elementsOf(b)))
            throw *failure;
        Detail::raise(solve(tableOf(A), elementsOf(b)));
    });
}

System::Expected<void, System::ErrorCode2> gels(Transpose trans, Matrix2& A, Vector2& b) {
    return System::guard<void>([&] { Detail::raise(solveLeastSquares(trans, tableOf(A), elementsOf(b))); });
}

System::Expected<void, System::ErrorCode2> gelsd(Matrix2& A, Vector2& b, double const& rcond) {
    return System::guard<void>([&] { Detail::raise(solveLeastNorm(tableOf(A), elementsOf(b), rcond)); });
}

System::Expected<Vector2, System::ErrorCode2> gglse(Matrix2& A, Matrix2& B, Vector2& c, Vector2& d) {
    return System::guard<Vector2>([&] {
        Vector2 x(A.columns());
        Detail::raise(solveConstrained(tableOf(A), tableOf(B), elementsOf(c), elementsOf(d), x.data()));
        return x;
    });
}

void gesv(Matrix& A, Vector& b, System::ErrorCode& error) {
    reporting(error, [&] {
        raiseLegacy(shapeFailure(tableOf(A), elementsOf(b)));
        raiseLegacy(solve(tableOf(A), elementsOf(b)));
    });
}

void gels(Transpose trans, Matrix& A, Vector& b, System::ErrorCode& error) {
    reporting(error, [&] { raiseLegacy(solveLeastSquares(trans, tableOf(A), elementsOf(b))); });
}

void gelsd(Matrix& A, Vector& b, System::ErrorCode& error, double const& rcond) {
    reporting(error, [&] { raiseLegacy(solveLeastNorm(tableOf(A), elementsOf(b), rcond)); });
}

Vector gglse(Matrix& A, Matrix& B, Vector& c, Vector& d, System::ErrorCode& error) {
    Vector result;
    reporting(error, [&] {
        Vector x(A.columns());
        raiseLegacy(solveConstrained(tableOf(A), tableOf(B), elementsOf(c), elementsOf(d), x.data()));
        result = std::move(x);
    });
    return result;
}

} // namespace LAPACK

} // namespace Tervane::Math

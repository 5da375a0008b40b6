#include "foundation/Failure.h"
#include "legacy/Boundary.h"
#include "linalg/MatrixRef.h"
#include "linalg/OneMKL.h"

#include <Math/Detail/ElementArray.h>
#include <Math/LAPACK.h>
#include <System/Guard.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace Tervane::Math {

// The routines on plain memory, written once. Every driver is called twice: the first call only asks for the
// size of the workspace, which comes back as a floating number in the workspace's first element.

namespace {

using Detail::Failure;
using Detail::MatrixRef;
using Detail::RealArray;
using Detail::refOf;
using Detail::reportedResult;
using Detail::reportFailure;
using Detail::VectorRef;
constexpr auto Described = Detail::StandardException::Described;
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

/// An empty row has one row by its shape. A driver with one equation would write where no element is; with
/// more it refuses the row for its shape.
bool isEmptyRow(VectorRef const& b) {
    return b.length < b.rows;
}

/// What does not fit together in A x = b, if anything.
Failure shapeFailure(MatrixRef const& a, VectorRef const& b) {
    if (a.rows != a.columns)
        return MatrixNotSquare;
    if (a.rows != b.rows || isEmptyRow(b) || !a.isWhole)
        return DimensionsMismatch;
    return {};
}

Failure gesv(MatrixRef const& a, VectorRef const& b) {
    return OneMKL::gesv(a.rows, 1, a.data, b.data).failure(SolutionNotComputed);
}

Failure gels(Transpose trans, MatrixRef const& a, VectorRef const& b) {
    if (!a.isWhole || (a.rows == 1 && a.columns <= 1 && isEmptyRow(b)))
        return DimensionsMismatch;
    auto const driver = [&](double* work, OneMKL::Integer lwork) {
        return OneMKL::gels(trans, a.rows, a.columns, a.data, a.rows, b.data, b.rows, work, lwork);
    };
    return runWithWorkspace(driver).failure(LeastSquaresFailed);
}

Failure gelsd(MatrixRef const& a, VectorRef const& b, double rcond) {
    if (!a.isWhole || (a.rows == 1 && a.columns == 1 && isEmptyRow(b)))
        return DimensionsMismatch;
    RealArray singularValues(std::max<std::size_t>(std::min(a.rows, a.columns), 1));
    std::vector<OneMKL::Integer> iwork(1);
    auto const driver = [&](double* work, OneMKL::Integer lwork) {
        // The query leaves the size of the integer workspace in its first element.
        if (lwork != OneMKL::workspaceQuery)
            iwork.resize(static_cast<std::size_t>(iwork[0]));
        return OneMKL::gelsd(a.rows, a.columns, a.data, a.rows, b.data, b.rows, singularValues.data(), rcond,
                             work, lwork, iwork.data());
    };
    return runWithWorkspace(driver).failure(LeastSquaresFailed);
}

/// @param x room for a.columns elements
Failure gglse(MatrixRef const& a, MatrixRef const& b, VectorRef const& c, VectorRef const& d, double* x) {
    if (a.rows == 0 || a.columns == 0)
        return InvalidParameter;
    if (a.columns != b.columns || c.length < a.rows || d.length < b.rows || !a.isWhole || !b.isWhole)
        return DimensionsMismatch;
    auto const driver = [&](double* work, OneMKL::Integer lwork) {
        return OneMKL::gglse(a.rows, a.columns, b.rows, a.data, a.rows, b.data, b.rows, c.data, d.data, x,
                             work, lwork);
    };
    switch (runWithWorkspace(driver).info) {
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

} // namespace

namespace LAPACK {

System::Expected<void, System::ErrorCode2> gesv(Matrix2& A, Vector2& b) {
    return System::guard<void>([&] {
        // The bare enumerator is no exception that the guard knows, so a wrong shape becomes the error -1 of
        // the system category (compatibility C50).
        if (Failure const failure = shapeFailure(refOf(A), refOf(b)))
            throw *failure;
        Detail::raise(Math::gesv(refOf(A), refOf(b)));
    });
}

System::Expected<void, System::ErrorCode2> gels(Transpose trans, Matrix2& A, Vector2& b) {
    return System::guard<void>([&] { Detail::raise(Math::gels(trans, refOf(A), refOf(b))); });
}

System::Expected<void, System::ErrorCode2> gelsd(Matrix2& A, Vector2& b, double const& rcond) {
    return System::guard<void>([&] { Detail::raise(Math::gelsd(refOf(A), refOf(b), rcond)); });
}

System::Expected<Vector2, System::ErrorCode2> gglse(Matrix2& A, Matrix2& B, Vector2& c, Vector2& d) {
    return System::guard<Vector2>([&] {
        Vector2 x(A.columns());
        Detail::raise(Math::gglse(refOf(A), refOf(B), refOf(c), refOf(d), x.data()));
        return x;
    });
}

void gesv(Matrix& A, Vector& b, System::ErrorCode& error) {
    reportFailure<Described>(error, [&] {
        Failure const failure = shapeFailure(refOf(A), refOf(b));
        return failure ? failure : Math::gesv(refOf(A), refOf(b));
    });
}

void gels(Transpose trans, Matrix& A, Vector& b, System::ErrorCode& error) {
    reportFailure<Described>(error, [&] { return Math::gels(trans, refOf(A), refOf(b)); });
}

void gelsd(Matrix& A, Vector& b, System::ErrorCode& error, double const& rcond) {
    reportFailure<Described>(error, [&] { return Math::gelsd(refOf(A), refOf(b), rcond); });
}

Vector gglse(Matrix& A, Matrix& B, Vector& c, Vector& d, System::ErrorCode& error) {
    return reportedResult<Vector, Described>(error, [&](std::optional<Vector>& result) {
        Vector x(A.columns());
        Failure const failure = Math::gglse(refOf(A), refOf(B), refOf(c), refOf(d), x.data());
        if (!failure)
            result = std::move(x);
        return failure;
    });
}

} // namespace LAPACK

} // namespace Tervane::Math

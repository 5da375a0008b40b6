#pragma once

/// @file
/// A legacy holder for the outcome of a solve or a fit.
///
/// @code
/// using namespace Tervane::Math;
/// LinearAlgebraResult fit(Vector{3.0, 2.0}, Vector{0.1, -0.1, 0.0}, Tervane::System::ErrorCode());
/// if (!fit.hasError())
///     std::cout << fit.solution(0)[1] << ", residual " << fit.rss(0) << '\n';
/// @endcode

#include <Math/Export.h>
#include <System/ErrorCode.h>
#include <System/Object.h>

#include <cstddef>

namespace Tervane::Math {

class Matrix;
class Vector;
class ViewVector;

namespace Detail {
struct LinearAlgebraResultData;
}

/// One solution, a vector, or several, the columns of a matrix; their residuals likewise; and how the solve
/// ended.
///
/// Movable, not copyable. A moved-from result may only be destroyed or assigned to. Indices are not checked;
/// with a single solution they are ignored. Reading one result from several threads is safe.
class TVNMATH_API LinearAlgebraResult : public System::Object {
public:
    /// An empty solution with empty residuals, and how the solve ended.
    explicit LinearAlgebraResult(System::ErrorCode&& error);

    /// One solution for each column.
    LinearAlgebraResult(Matrix&& solutions, Matrix&& residuals, System::ErrorCode&& error);

    /// A single solution.
    LinearAlgebraResult(Vector&& solutions, Vector&& residuals, System::ErrorCode&& error);

    /// @name Moves
    /// @{

    /// What is moved from may only be destroyed or assigned to.
    LinearAlgebraResult(LinearAlgebraResult&& other) noexcept;
    LinearAlgebraResult& operator=(LinearAlgebraResult&& other) noexcept;
    ~LinearAlgebraResult() override;
    /// @}

    /// 1 for a vector, even an empty one (compatibility C56); the number of columns for a matrix.
    std::size_t numberSolutions() const;

    /// @name Views
    /// @{

    /// Of the i-th solution and of its residuals, in place: valid as long as this result is. Not callable on
    /// a constant result.
    ViewVector solution(std::size_t i);
    ViewVector residuals(std::size_t i);
    /// @}

    /// The sum of the squares of the i-th solution's residuals, added from the first to the last; 0.0 for
    /// none.
    double rss(std::size_t i) const;

    /// Whether the solve ended with an error.
    bool hasError() const;

    /// What the result was made with.
    System::ErrorCode const& error() const;

private:
    Detail::LinearAlgebraResultData& _data();
    Detail::LinearAlgebraResultData const& _data() const;
};

} // namespace Tervane::Math

#include "functions/ScalarFunctions.h"

#include <Math/LinearAlgebraResult.h>
#include <Math/Matrix.h>
#include <Math/Vector.h>
#include <Math/ViewVector.h>

#include <utility>
#include <variant>

namespace Tervane::Math {

/// What a LinearAlgebraResult owns. Both variants hold the same alternative.
struct Detail::LinearAlgebraResultData final : System::ObjectData {
    using Solutions = std::variant<Vector, Matrix>;

    LinearAlgebraResultData(Solutions&& solutionsOf, Solutions&& residualsOf, System::ErrorCode&& errorOf)
        : solutions(std::move(solutionsOf)), residuals(std::move(residualsOf)), error(std::move(errorOf)) {}

    Solutions solutions;
    Solutions residuals;
    System::ErrorCode error;
};

namespace {

using Solutions = Detail::LinearAlgebraResultData::Solutions;

System::UniquePointer<System::ObjectData> makeData(Solutions&& solutions, Solutions&& residuals,
                                                   System::ErrorCode&& error) {
    return System::UniquePointer<System::ObjectData>(
        new Detail::LinearAlgebraResultData(std::move(solutions), std::move(residuals), std::move(error)));
}

struct ViewOfSolution {
    std::size_t i;
    ViewVector operator()(Vector const& only) const { return ViewVector(only); }
    ViewVector operator()(Matrix const& columns) const { return ViewVector(columns, i); }
};

} // namespace

LinearAlgebraResult::LinearAlgebraResult(System::ErrorCode&& error)
    : LinearAlgebraResult(Vector(), Vector(), std::move(error)) {}

LinearAlgebraResult::LinearAlgebraResult(Matrix&& solutions, Matrix&& residuals, System::ErrorCode&& error)
    : Object(makeData(std::move(solutions), std::move(residuals), std::move(error))) {}

LinearAlgebraResult::LinearAlgebraResult(Vector&& solutions, Vector&& residuals, System::ErrorCode&& error)
    : Object(makeData(std::move(solutions), std::move(residuals), std::move(error))) {}

LinearAlgebraResult::LinearAlgebraResult(LinearAlgebraResult&& other) noexcept = default;
LinearAlgebraResult& LinearAlgebraResult::operator=(LinearAlgebraResult&& other) noexcept = default;
LinearAlgebraResult::~LinearAlgebraResult() = default;

std::size_t LinearAlgebraResult::numberSolutions() const {
    struct Count {
        std::size_t operator()(Vector const& /*only*/) const { return 1; }
        std::size_t operator()(Matrix const& columns) const { return columns.columns(); }
    };
    return std::visit(Count(), _data().solutions);
}

ViewVector LinearAlgebraResult::solution(std::size_t i) {
    return std::visit(ViewOfSolution{i}, _data().solutions);
}

ViewVector LinearAlgebraResult::residuals(std::size_t i) {
    return std::visit(ViewOfSolution{i}, _data().residuals);
}

double LinearAlgebraResult::rss(std::size_t i) const {
    ViewVector const view = std::visit(ViewOfSolution{i}, _data().residuals);
    std::size_t const n = view.rows() * view.columns(); // length() is 1 for an empty view
    double sum = 0.0;
    for (std::size_t k = 0; k < n; ++k)
        sum += Detail::power(view[k], 2.0);
    return sum;
}

bool LinearAlgebraResult::hasError() const {
    return _data().error.hasError();
}

System::ErrorCode const& LinearAlgebraResult::error() const {
    return _data().error;
}

Detail::LinearAlgebraResultData& LinearAlgebraResult::_data() {
    return *static_cast<Detail::LinearAlgebraResultData*>(objectData());
}

Detail::LinearAlgebraResultData const& LinearAlgebraResult::_data() const {
    return *static_cast<Detail::LinearAlgebraResultData const*>(objectData());
}

} // namespace Tervane::Math

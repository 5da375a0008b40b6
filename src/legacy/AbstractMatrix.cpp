#include "legacy/Boundary.h"
#include "linalg/Products.h"

#include <Math/AbstractMatrix.h>
#include <Math/Errors.h>
#include <Math/Matrix.h>
#include <Math/Vector.h>

#include <optional>

namespace Tervane::Math {

AbstractMatrix::~AbstractMatrix() = default;

bool AbstractMatrix::isSquare() const {
    Dimensions const shape = size();
    return shape.columns() == shape.rows() && shape.rows() > 0;
}

Matrix AbstractMatrix::elementwiseMultiply(AbstractMatrix const& b, System::ErrorCode& error) const {
    return Detail::reportedResult<Matrix>(error, [&](std::optional<Matrix>& result) -> Detail::Failure {
        Dimensions const shape = size();
        if (shape != b.size())
            return DimensionsMismatch;
        Matrix& product = result.emplace(shape, 0.0);
        std::size_t const rowCount = rows();
        std::size_t const columnCount = columns();
        for (Index i; i.row() < rowCount; i.incrementRow(1))
            for (i.setColumn(0); i.column() < columnCount; i.incrementColumn(1))
                product[i] = (*this)[i] * b[i];
        return {};
    });
}

Matrix AbstractMatrix::multiply(AbstractMatrix const& b, System::ErrorCode& error) const {
    return Detail::product(NoTranspose, NoTranspose, 1.0, *this, b, error);
}

Vector AbstractMatrix::multiply(AbstractVector const& x, System::ErrorCode& error) const {
    return Detail::product(NoTranspose, 1.0, *this, x, error);
}

} // namespace Tervane::Math

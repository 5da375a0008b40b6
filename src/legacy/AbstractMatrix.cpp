#include <Math/AbstractMatrix.h>
#include <Math/Errors.h>
#include <Math/Matrix.h>
#include <System/ErrorCode.h>

namespace Tervane::Math {

AbstractMatrix::~AbstractMatrix() = default;

bool AbstractMatrix::isSquare() const {
    Dimensions const shape = size();
    return shape.columns() == shape.rows() && shape.rows() > 0;
}

Matrix AbstractMatrix::elementwiseMultiply(AbstractMatrix const& b, System::ErrorCode& error) const {
    try {
        Dimensions const shape = size();
        if (shape != b.size())
            throw LinearAlgebraErrorCode::DimensionsMismatch;
        Matrix product(shape, 0.0);
        std::size_t const rowCount = rows();
        std::size_t const columnCount = columns();
        for (Index i; i.row() < rowCount; i.incrementRow(1))
            for (i.setColumn(0); i.column() < columnCount; i.incrementColumn(1))
                product[i] = (*this)[i] * b[i];
        return product;
    } catch (LinearAlgebraErrorCode code) {
        error.assign(System::ErrorBuilder<LinearAlgebraErrorCode>::make(code));
    } catch (...) {
        error.assignUnknown();
    }
    return Matrix();
}

} // namespace Tervane::Math

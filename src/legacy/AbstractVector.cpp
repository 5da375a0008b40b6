#include <Math/AbstractVector.h>

#include <algorithm>

namespace Tervane::Math {

AbstractVector::~AbstractVector() = default;

double const& AbstractVector::operator[](std::size_t i) const {
    return (*this)[orientation() == Column ? Index(i, 0) : Index(0, i)];
}

std::size_t AbstractVector::length() const {
    Dimensions const shape = size();
    return std::max(shape.rows(), shape.columns());
}

VectorOrientation AbstractVector::orientation() const {
    Dimensions const shape = size();
    return shape.columns() <= shape.rows() ? Column : Row;
}

double const& AbstractVector::value(std::size_t i) const {
    return (*this)[i];
}

} // namespace Tervane::Math

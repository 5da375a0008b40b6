#include "foundation/Shapes.h"

#include <Math/Matrix2.h>

template class Tervane::System::Expected<Tervane::Math::Matrix2, Tervane::System::ErrorCode2>;

namespace Tervane::Math {

Matrix2::Matrix2(Dimensions const& size, double const& value)
    : _elements(Detail::elementCount(size), value), _dimensions(size) {}

Matrix2::Matrix2(std::size_t rows, std::size_t columns, double const& value)
    : Matrix2(Dimensions(rows, columns), value) {}

Matrix2::~Matrix2() = default;

} // namespace Tervane::Math

#include "foundation/Shapes.h"

#include <Math/Matrix2.h>
#include <Math/VectorView2.h>

template class Tervane::System::Expected<Tervane::Math::VectorView2, Tervane::System::ErrorCode2>;

namespace Tervane::Math {

VectorView2::VectorView2(Matrix2 const& m, std::size_t column) noexcept
    : VectorView2(m[column], m.rows(), Column) {}

Dimensions VectorView2::size() noexcept {
    return Detail::shapeOf(_orientation, _length);
}

} // namespace Tervane::Math

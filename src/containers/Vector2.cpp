#include "containers/Access.h"
#include "containers/TextForm.h"
#include "foundation/ElementwiseDispatch.h"
#include "foundation/Shapes.h"
#include "foundation/SliceResolution.h"

#include <Math/Vector2.h>
#include <System/Guard.h>

template class Tervane::System::Expected<Tervane::Math::Vector2, Tervane::System::ErrorCode2>;

namespace Tervane::Math {

Vector2::Vector2(std::size_t n) : _elements(n) {}

Vector2::Vector2(std::size_t n, double const& value) : _elements(Detail::Uninitialised{}, n) {
    ElementwiseDispatch::fill(_elements.begin(), _elements.end(), value);
}

Vector2::Vector2(double const* source, std::size_t n) : _elements(source, n) {}

Vector2::Vector2(VectorView2 const& view)
    : _elements(view.data(), view.length()), _orientation(Detail::ContainerAccess::orientation(view)) {}

Vector2::~Vector2() = default;

Vector2 Vector2::operator[](Slice const& slice) const {
    Detail::ResolvedSlice const selection = Detail::resolveSlice(slice, length());
    Vector2 result = Detail::ContainerAccess::uninitialised(selection.count, Column);
    for (std::size_t k = 0; k < selection.count; ++k)
        result[k] = _elements[selection.position(k)];
    return result;
}

std::size_t Vector2::rows() const noexcept {
    return Detail::rowsOf(_orientation, length());
}

std::size_t Vector2::columns() const noexcept {
    return Detail::columnsOf(_orientation, length());
}

Dimensions Vector2::size() noexcept {
    return Detail::shapeOf(_orientation, length());
}

void Vector2::reserve(std::size_t n) {
    _elements.reserve(n);
}

System::Expected<void, System::ErrorCode2> Vector2::resize(std::size_t n, double const& value) {
    return System::guard<void>([&] { _elements.resize(n, value); });
}

System::Expected<System::String2, System::ErrorCode2> Vector2::toString() {
    return Detail::textForm(data(), length());
}

} // namespace Tervane::Math

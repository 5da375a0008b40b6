#include "containers/Access.h"
#include "containers/TextForm.h"
#include "foundation/Shapes.h"

#include <Math/ComplexVector2.h>
#include <Math/Errors.h>
#include <System/Exceptions.h>
#include <System/Guard.h>

#include <algorithm>
#include <complex>

template class Tervane::System::Expected<Tervane::Math::ComplexVector2, Tervane::System::ErrorCode2>;

namespace Tervane::Math {

ComplexVector2::ComplexVector2(std::size_t n) : _elements(n) {}

ComplexVector2::~ComplexVector2() = default;

System::Expected<ComplexVector2, System::ErrorCode2> ComplexVector2::fromData(double const* values,
                                                                              std::size_t count) {
    return System::guard<ComplexVector2>([=] {
        if (count % 2 != 0)
            throw System::SystemError(OddComplexDataLength);
        ComplexVector2 result = Detail::ContainerAccess::uninitialisedComplex(count / 2, Column);
        std::copy_n(values, count, result.data());
        return result;
    });
}

System::Expected<System::String2, System::ErrorCode2> ComplexVector2::toString() {
    return Detail::textForm(Detail::ContainerAccess::elements(*this), length());
}

Dimensions ComplexVector2::size() noexcept {
    return Detail::shapeOf(_orientation, length());
}

} // namespace Tervane::Math

#pragma once

#include <Math/Detail/ElementArray.h>
#include <Math/VectorOrientation.h>
#include <System/Object.h>

#include <utility>

namespace Tervane::Math::Detail {

/// What a Vector owns.
struct VectorData final : System::ObjectData {
    VectorData() = default;
    VectorData(RealArray elements, VectorOrientation o) noexcept
        : values(std::move(elements)), orientation(o) {}

    RealArray values;
    VectorOrientation orientation = Column;
};

} // namespace Tervane::Math::Detail

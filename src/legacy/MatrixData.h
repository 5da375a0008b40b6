#pragma once

#include <Math/Detail/ElementArray.h>
#include <Math/Dimensions.h>
#include <System/Object.h>

#include <utility>

namespace Tervane::Math::Detail {

/// What a Matrix owns: its elements column after column, and the shape that it reports.
struct MatrixData final : System::ObjectData {
    MatrixData() = default;
    MatrixData(RealArray elements, Dimensions const& d) noexcept
        : values(std::move(elements)), dimensions(d) {}

    RealArray values;
    Dimensions dimensions;
};

} // namespace Tervane::Math::Detail

#pragma once

#include <Math/Detail/ElementArray.h>
#include <System/Object.h>

#include <utility>

namespace Tervane::Math::Detail {

/// What a ComplexVector owns.
struct ComplexVectorData final : System::ObjectData {
    ComplexVectorData() = default;
    explicit ComplexVectorData(ComplexArray elements) noexcept : values(std::move(elements)) {}

    ComplexArray values;
};

} // namespace Tervane::Math::Detail

#pragma once

#include <Math/VectorOrientation.h>
#include <System/Object.h>

#include <cstddef>

namespace Tervane::Math::Detail {

/// What a ViewVector owns: where someone else's elements are.
struct ViewVectorData final : System::ObjectData {
    ViewVectorData() = default;
    ViewVectorData(double const* p, std::size_t n, VectorOrientation o) noexcept
        : data(p), length(n), orientation(o) {}

    double const* data = nullptr;
    std::size_t length = 0;
    VectorOrientation orientation = Column;
};

} // namespace Tervane::Math::Detail

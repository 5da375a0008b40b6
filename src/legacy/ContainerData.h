#pragma once

#include <Math/Detail/ComplexArray.h>
#include <Math/Dimensions.h>
#include <Math/VectorOrientation.h>
#include <System/Object.h>

#include <cstddef>
#include <utility>

namespace Tervane::Math::Detail {

/// What a Vector owns.
struct VectorData final : System::ObjectData {
    VectorData() = default;
    VectorData(RealArray elements, VectorOrientation o) noexcept
        : values(std::move(elements)), orientation(o) {}

    /// @name Storage
    /// A result's data object lives no longer than its elements, and its storage is kept for the next one as
    /// theirs is.
    /// @{
    static void* operator new(std::size_t bytes) { return RecyclingAllocator().allocate(doublesIn(bytes)); }
    static void operator delete(void* p, std::size_t bytes) noexcept {
        RecyclingAllocator().deallocate(static_cast<double*>(p), doublesIn(bytes));
    }
    /// @}

    RealArray values;
    VectorOrientation orientation = Column;

private:
    static constexpr std::size_t doublesIn(std::size_t bytes) noexcept {
        return (bytes + sizeof(double) - 1) / sizeof(double);
    }
};

/// What a ViewVector owns: where someone else's elements are.
struct ViewVectorData final : System::ObjectData {
    ViewVectorData() = default;
    ViewVectorData(double const* p, std::size_t n, VectorOrientation o) noexcept
        : data(p), length(n), orientation(o) {}

    double const* data = nullptr;
    std::size_t length = 0;
    VectorOrientation orientation = Column;
};

/// What a Matrix owns: its elements column after column, and the shape that it reports. The storage holds
/// every element of that shape, also where the array is shorter.
struct MatrixData final : System::ObjectData {
    MatrixData() = default;
    MatrixData(RealArray elements, Dimensions const& d) noexcept
        : values(std::move(elements)), dimensions(d) {}

    RealArray values;
    Dimensions dimensions;
};

/// What a ComplexVector owns.
struct ComplexVectorData final : System::ObjectData {
    ComplexVectorData() = default;
    explicit ComplexVectorData(ComplexArray elements) noexcept : values(std::move(elements)) {}

    ComplexArray values;
};

} // namespace Tervane::Math::Detail

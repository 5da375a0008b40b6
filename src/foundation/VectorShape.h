#pragma once

#include <Math/Dimensions.h>
#include <Math/VectorOrientation.h>

#include <cstddef>

namespace Tervane::Math::Detail {

/// @name The shape of a vector of n elements
/// An orientation that is neither row nor column has one row and one column by the single questions, and the
/// shape of a column when asked for both.
/// @{
constexpr std::size_t rowsOf(VectorOrientation orientation, std::size_t n) noexcept {
    return orientation == Column ? n : 1;
}

constexpr std::size_t columnsOf(VectorOrientation orientation, std::size_t n) noexcept {
    return orientation == Row ? n : 1;
}

constexpr Dimensions shapeOf(VectorOrientation orientation, std::size_t n) noexcept {
    return orientation == Row ? Dimensions(1, n) : Dimensions(n, 1);
}
/// @}

} // namespace Tervane::Math::Detail

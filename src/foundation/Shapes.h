#pragma once

#include <Math/Detail/ElementArray.h>
#include <Math/Dimensions.h>
#include <Math/VectorOrientation.h>

#include <cstddef>
#include <stdexcept>

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

/// rows × columns, for the storage of a matrix.
///
/// @throws std::length_error when no array could hold that many, which includes a product that would wrap to
///         a number that one could
inline std::size_t elementCount(Dimensions const& d) {
    if (d.columns() != 0 && d.rows() > RealArray::maxLength / d.columns())
        throw std::length_error("vector too long");
    return d.rows() * d.columns();
}

} // namespace Tervane::Math::Detail

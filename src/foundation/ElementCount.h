#pragma once

#include <Math/Detail/ElementArray.h>
#include <Math/Dimensions.h>

#include <cstddef>
#include <stdexcept>

namespace Tervane::Math::Detail {

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

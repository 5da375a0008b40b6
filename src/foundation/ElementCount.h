#pragma once

#include <Math/Dimensions.h>

#include <cstddef>
#include <stdexcept>

namespace Tervane::Math::Detail {

/// rows x columns, for the storage of either generation's matrix.
///
/// @throws std::length_error when the product wraps around: storage for what is left of it would be far too
/// short
inline std::size_t elementCount(Dimensions const& size) {
    std::size_t count = 0;
    if (__builtin_mul_overflow(size.rows(), size.columns(), &count))
        throw std::length_error("vector too long");
    return count;
}

} // namespace Tervane::Math::Detail

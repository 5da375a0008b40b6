#pragma once

/// @file
/// Whether a vector presents itself as a row or as a column.

#include <cstdint>

namespace Tervane::Math {

/// How a vector of n elements answers questions about its shape. Its storage is the same either way.
enum VectorOrientation : std::int32_t {
    Row = 0,    ///< 1 row, n columns
    Column = 1, ///< n rows, 1 column; what every new vector and view is
};

} // namespace Tervane::Math

#pragma once

/// @file
/// The element order of a matrix's storage.

#include <cstdint>

namespace Tervane::Math {

/// Which elements of a matrix lie side by side. Every matrix of this library is column-major.
enum MatrixLayout : std::int32_t {
    ColumnMajor = 1, ///< the elements of a column are adjacent, columns follow one another
};

} // namespace Tervane::Math

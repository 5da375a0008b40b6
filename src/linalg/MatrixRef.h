#pragma once

#include "containers/Access.h"

#include <Math/Matrix.h>
#include <Math/Matrix2.h>
#include <Math/Vector.h>
#include <Math/Vector2.h>

#include <cstddef>

namespace Tervane::Math::Detail {

/// A column-major matrix of either generation in memory, for a driver to work on. The leading dimension is
/// the row count.
struct MatrixRef {
    double* data;
    std::size_t rows;
    std::size_t columns;
    bool isWhole; ///< it has every element that its shape says
};

/// A vector of either generation in memory, with the shape that its orientation gives it.
struct VectorRef {
    double* data;
    std::size_t length;
    std::size_t rows;
    std::size_t columns;
};

inline MatrixRef refOf(Matrix2& m) {
    return {m.data(), m.rows(), m.columns(), ContainerAccess::isWhole(m)};
}
inline MatrixRef refOf(Matrix& m) {
    return {m.data(), m.rows(), m.columns(), true};
}

inline VectorRef refOf(Vector2& v) {
    return {v.data(), v.length(), v.rows(), v.columns()};
}
inline VectorRef refOf(Vector& v) {
    return {v.data(), v.length(), v.rows(), v.columns()};
}

} // namespace Tervane::Math::Detail

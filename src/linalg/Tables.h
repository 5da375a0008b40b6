#pragma once

#include "containers/Access.h"
#include "foundation/VectorShape.h"

#include <Math/AbstractMatrix.h>
#include <Math/Dimensions.h>
#include <Math/Matrix.h>
#include <Math/Matrix2.h>
#include <Math/Vector.h>
#include <Math/Vector2.h>

#include <cstddef>

namespace Tervane::Math::Detail {

/// A column-major table in memory: what the routines take from the containers of either generation. The
/// leading dimension is the row count.
template<class Element>
struct Table {
    Element* data;
    std::size_t rows;
    std::size_t columns;

    Dimensions size() const noexcept { return Dimensions(rows, columns); }
    std::size_t leadingDimension() const noexcept { return rows; }
};

using TableIn = Table<double const>;
using TableInOut = Table<double>;

/// A vector in memory, with the shape that its orientation gives it.
template<class Element>
struct Elements {
    Element* data;
    std::size_t length;
    std::size_t rows;
    std::size_t columns;
};

using ElementsIn = Elements<double const>;
using ElementsInOut = Elements<double>;

inline TableIn tableOf(Matrix2 const& m) {
    return {m.data(), m.rows(), m.columns()};
}
inline TableInOut tableOf(Matrix2& m) {
    return {m.data(), m.rows(), m.columns()};
}
inline TableIn tableOf(AbstractMatrix const& m) {
    return {m.data(), m.rows(), m.columns()};
}
inline TableInOut tableOf(Matrix& m) {
    return {m.data(), m.rows(), m.columns()};
}

inline ElementsIn elementsOf(Vector2 const& v) {
    return {v.data(), v.length(), v.rows(), v.columns()};
}
inline ElementsInOut elementsOf(Vector2& v) {
    return {v.data(), v.length(), v.rows(), v.columns()};
}
inline ElementsIn elementsOf(AbstractVector const& v) {
    return {v.data(), v.length(), v.rows(), v.columns()};
}
inline ElementsInOut elementsOf(Vector& v) {
    return {v.data(), v.length(), v.rows(), v.columns()};
}

} // namespace Tervane::Math::Detail

#pragma once

/// @file
/// The shape of a table.
///
/// @code
/// Tervane::Math::Dimensions const shape(2, 3);
/// shape.rows();                                    // 2
/// shape == Tervane::Math::Dimensions(2, 3);        // true
/// @endcode

#include <Math/Export.h>

#include <cstddef>

namespace Tervane::Math {

/// Number of rows and of columns of a table. A column vector of n elements is (n, 1), a row vector (1, n).
///
/// A plain value; nothing is checked, every operation is safe on distinct objects from any thread.
class Dimensions {
public:
    /// No rows and no columns.
    constexpr Dimensions() noexcept = default;

    /// The given numbers.
    constexpr Dimensions(std::size_t rows, std::size_t columns) noexcept : _rows(rows), _columns(columns) {}

    /// A reference into this object; it lives as long as the object does.
    constexpr std::size_t const& rows() const noexcept { return _rows; }

    /// A reference into this object; it lives as long as the object does.
    constexpr std::size_t const& columns() const noexcept { return _columns; }

    /// Equal when both the rows and the columns are.
    friend constexpr bool operator==(Dimensions const&, Dimensions const&) noexcept = default;

private:
    std::size_t _rows = 0;
    std::size_t _columns = 0;
};

} // namespace Tervane::Math

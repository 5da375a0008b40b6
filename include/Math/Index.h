#pragma once

/// @file
/// A position in a table.
///
/// @code
/// Tervane::Math::Index(1, 2).setRow(4).incrementColumn(3);   // row 4, column 5
/// @endcode

#include <cstddef>

namespace Tervane::Math {

/// Zero-based row and column of one element of a table.
///
/// A plain value that knows no table: neither the setters nor the increments check a bound, and an
/// increment wraps as unsigned arithmetic does.
class Index {
public:
    /// Row 0, column 0.
    constexpr Index() noexcept = default;

    /// The given position.
    constexpr Index(std::size_t row, std::size_t column) noexcept : _row(row), _column(column) {}

    /// @{
    /// Counted from 0.
    constexpr std::size_t row() const noexcept { return _row; }
    constexpr std::size_t column() const noexcept { return _column; }
    /// @}

    /// @name Changes
    /// @{

    /// Each returns this index, so that calls chain.
    constexpr Index& setRow(std::size_t row) noexcept {
        _row = row;
        return *this;
    }

    constexpr Index& setColumn(std::size_t column) noexcept {
        _column = column;
        return *this;
    }

    constexpr Index& incrementRow(std::size_t by) noexcept {
        _row += by;
        return *this;
    }

    constexpr Index& incrementColumn(std::size_t by) noexcept {
        _column += by;
        return *this;
    }
    /// @}

private:
    std::size_t _row = 0;
    std::size_t _column = 0;
};

} // namespace Tervane::Math

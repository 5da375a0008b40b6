#pragma once

/// @file
/// The root of the polymorphic tables: whatever answers for rows, columns and elements.
///
/// @code
/// double trace(Tervane::Math::AbstractDataTable const& table) {
///     double total = 0.0;
///     for (std::size_t i = 0; table.isValidIndex(i, i); ++i)
///         total += table.at(i, i);
///     return total;
/// }
/// @endcode

#include <Math/Dimensions.h>
#include <Math/Export.h>
#include <Math/Index.h>

#include <cstddef>

namespace Tervane::Math {

/// A table of doubles, whoever owns them. Derive from AbstractMatrix or AbstractVector to hand the library a
/// table of your own.
///
/// The virtual operations are called through their slots in the order in which they are declared here; the
/// order is part of the binary interface. The class has no state. Reading one table from several threads is
/// as safe as the element access of the concrete class is.
class TVNMATH_API AbstractDataTable {
public:
    AbstractDataTable() noexcept = default;
    /// There is no state to copy or move.
    AbstractDataTable(AbstractDataTable const&) noexcept = default;
    /// There is no state to assign.
    AbstractDataTable& operator=(AbstractDataTable const&) noexcept = default;
    virtual ~AbstractDataTable();

    /// The element at a position. Whether the position is checked is up to the concrete class; those of this
    /// library do not check it. at() does.
    virtual double const& operator[](Index const& i) const = 0;

    /// The number of columns.
    virtual std::size_t columns() const = 0;

    /// The first element. Null, or any address, when there is none.
    virtual double const* data() const = 0;

    /// The number of rows.
    virtual std::size_t rows() const = 0;

    /// rows() and columns(), unless a class knows a shorter way.
    virtual Dimensions size() const;

    /// @name Checked access
    /// @{

    /// Whether the position lies in the table. rows() is asked first, columns() only when the row is valid.
    bool isValidIndex(Index const& i) const;
    bool isValidIndex(std::size_t row, std::size_t column) const;

    /// The element at a position that is checked first. The only checked access to the tables of this family
    /// (compatibility C77).
    ///
    /// @throws std::out_of_range "data table index out of range"
    double const& at(Index const& i) const;
    double const& at(std::size_t row, std::size_t column) const;

    /// @}
};

} // namespace Tervane::Math

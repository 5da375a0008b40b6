#pragma once

/// @file
/// What the legacy functions take as a vector.
///
/// @code
/// double dot(Tervane::Math::AbstractVector const& a, Tervane::Math::AbstractVector const& b) {
///     double total = 0.0;
///     for (std::size_t i = 0; i < a.length(); ++i)
///         total += a.value(i) * b.value(i);
///     return total;
/// }
/// @endcode

#include <Math/AbstractDataTable.h>
#include <Math/VectorOrientation.h>

#include <cstddef>

namespace Tervane::Math {

/// A table of one column or one row. A class that answers the questions of AbstractDataTable is a vector
/// already: everything here has a default that asks them.
class TVNMATH_API AbstractVector : public AbstractDataTable {
public:
    AbstractVector() noexcept = default;
    /// There is no state to copy or move.
    AbstractVector(AbstractVector const&) noexcept = default;
    /// There is no state to assign.
    AbstractVector& operator=(AbstractVector const&) noexcept = default;
    ~AbstractVector() override;

    using AbstractDataTable::operator[];

    /// Element `i`, unchecked. By default the one at row i, column 0 of a column and at row 0, column i of
    /// anything else.
    virtual double const& operator[](std::size_t i) const;

    /// By default the larger of the rows and columns that size() gives. An empty vector that keeps this
    /// default therefore has length 1 (compatibility C64).
    virtual std::size_t length() const;

    /// By default a column when size() has no more columns than rows, so an empty table and one of a single
    /// element are columns (compatibility C83).
    virtual VectorOrientation orientation() const;

    /// The same as operator[](std::size_t), by name. By default it asks that.
    virtual double const& value(std::size_t i) const;
};

} // namespace Tervane::Math

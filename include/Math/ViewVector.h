#pragma once

/// @file
/// The view of a vector in the legacy generation.
///
/// @code
/// using namespace Tervane::Math;
/// double const samples[] = {1.0, 2.0, 3.0, 4.0};
/// ViewVector const all(samples, 4, Column);
/// ViewVector const middle = all.sliced(1, 2);           // 2, 3
/// Matrix const matrix(3, 2, 0.0);
/// ViewVector const column(matrix, 0);                   // the first column
/// @endcode

#include <Math/BasicObject.h>
#include <Math/Export.h>
#include <Math/Index.h>
#include <Math/VectorOrientation.h>

#include <cstddef>

namespace Tervane::Math {

/// A vector whose elements belong to someone else. It holds an address, a length and an orientation: copying
/// it copies these and never the elements. The elements must outlive the view and stay where they are.
///
/// An empty view reports length() 1 and its end() is one element past data(), because it keeps the default of
/// AbstractVector (compatibility C64). An orientation that is neither Row nor Column is one by one
/// (compatibility C78). Only at() checks. A moved-from view may only be destroyed or assigned to.
class TVNMATH_API ViewVector : public System::BasicObject<AbstractVector> {
public:
    /// An empty column at the null address.
    ViewVector();

    /// The `n` doubles at `p`.
    ViewVector(double const* p, std::size_t n, VectorOrientation orientation);

    /// All elements of a vector, in its orientation.
    explicit ViewVector(Vector const& v);

    /// A column of a matrix, as a column: rows() elements from the one at row 0, of which the matrix tells
    /// the address.
    ///
    /// @pre `column` is below `m.columns()`; nothing checks this
    ViewVector(Matrix const& m, std::size_t column);

    /// @name Copies and moves
    /// @{

    /// A copy looks at the same elements. What is moved from has no data object.
    ViewVector(ViewVector const& other);
    ViewVector(ViewVector&& other) noexcept;
    ViewVector& operator=(ViewVector const& other);
    ViewVector& operator=(ViewVector&& other) noexcept;
    ~ViewVector() override;
    /// @}

    /// The `n` elements from `start` on, in the same orientation.
    ///
    /// @pre the elements lie in this view; compare with length() first
    ViewVector sliced(std::size_t start, std::size_t n) const;

    /// @name Elements
    /// @{

    /// By the index's row in a column, by its column in any other orientation.
    double const& operator[](Index const& i) const override;

    /// Element `i`, unchecked; at() checks.
    double const& operator[](std::size_t i) const override;

    /// The address of the first element.
    double const* data() const override;
    /// data().
    double const* begin() const;
    /// data() plus length(): of an empty view one element past data() (compatibility C64).
    double const* end() const;
    /// @}

    /// @name Shape
    /// @{
    /// The length of a row, otherwise 1.
    std::size_t columns() const override;
    /// The length of a column, otherwise 1.
    std::size_t rows() const override;
    /// Row or column.
    VectorOrientation orientation() const override;
    /// @}
};

} // namespace Tervane::Math

#pragma once

/// @file
/// The owning matrix of the legacy generation.
///
/// @code
/// using Tervane::Math::Index;
/// using Tervane::Math::Matrix;
///
/// Matrix m(2, 3, 0.0);
/// m.set(0, 2, 5.0);
/// m[Index(1, 0)] = 4.0;
/// m[2][0];                            // 5: the column comes first
/// Matrix const t = m.transposed();    // 3 rows, 2 columns
/// @endcode

#include <Math/BasicObject.h>
#include <Math/Dimensions.h>
#include <Math/Export.h>
#include <Math/Index.h>

#include <cstddef>
#include <initializer_list>

namespace Tervane::Math {

/// A matrix that owns its elements: column after column in one block on a 64-byte boundary, element (r, c) at
/// flat position r + c × rows().
///
/// No member checks an index or a shape; only at() does (compatibility C77). A moved-from matrix may only be
/// destroyed or assigned to. Reading one matrix from several threads is safe, writing needs synchronisation.
/// More than 2^61 - 1 elements are refused with std::length_error "vector too long", and memory that cannot
/// be had throws std::bad_alloc.
class TVNMATH_API Matrix : public System::BasicObject<AbstractMatrix> {
public:
    /// No rows and no columns; allocates no elements.
    Matrix();

    /// @name A filled matrix
    /// @{

    /// Every element is `fill`.
    Matrix(std::size_t rows, std::size_t columns, double const& fill);
    Matrix(Dimensions const& dimensions, double const& fill);
    /// @}

    /// A copy of any table of the shape that its size() gives, read row after row through its virtual element
    /// access.
    explicit Matrix(AbstractDataTable const& table);

    /// A copy of elements and shape.
    Matrix(Matrix const& other);
    /// Takes over the data object of `other`, which is left without one.
    Matrix(Matrix&& other) noexcept;

    /// Copies elements and shape into the storage of this matrix as far as it suffices.
    Matrix& operator=(Matrix const& other);
    /// Takes over the data object of `other`, which is left without one.
    Matrix& operator=(Matrix&& other) noexcept;
    ~Matrix() override;

    /// @name Elements
    /// @{

    /// The element at a row and a column, unchecked; at() checks.
    double const& operator[](Index const& i) const override;
    double& operator[](Index const& i);

    /// The elements of column `c`, so that `m[c][r]` is the one at row r: the column comes first
    /// (compatibility C24).
    double* operator[](std::size_t c);
    double const* operator[](std::size_t c) const;

    /// All elements, column after column; null when nothing was ever allocated.
    double const* data() const override;
    double* data();

    /// Writes one element.
    void set(std::size_t row, std::size_t column, double const& value);
    /// @}

    /// @name Shape
    /// @{
    /// The number of columns.
    std::size_t columns() const override;
    /// The number of rows.
    std::size_t rows() const override;
    /// Both.
    Dimensions size() const override;

    /// Always ColumnMajor.
    MatrixLayout majorOrder() const override;
    /// @}

    /// A matrix whose element (c, r) is this one's (r, c).
    Matrix transposed() const;

    /// Gives the storage rows × columns elements, but leaves the shape that the matrix reports as it is:
    /// afterwards rows(), columns() and size() still tell the old shape (compatibility C68). For a matrix of
    /// another shape construct one.
    ///
    /// The elements keep their flat positions. Those that are cut off stay in the storage past the new end,
    /// where the shape still finds them, in copies of the matrix too; copies of `fill` follow those that are
    /// there. Asking for the reported shape changes nothing. data() may move.
    ///
    /// @return this matrix
    Matrix& resize(std::size_t rows, std::size_t columns, double const& fill = 0.0);

    /// Joins a grid of blocks, given as a list of rows of blocks from left to right. An empty grid gives an
    /// empty matrix. The first blocks alone decide the shape (compatibility C69).
    ///
    /// @pre No row of blocks is empty, the blocks of a row are of one height, and all rows are of one width.
    ///      Builds with assertions stop when this is broken; otherwise elements end up in wrong places or
    ///      outside the result.
    static Matrix stack(std::initializer_list<std::initializer_list<Matrix>> blocks);
};

} // namespace Tervane::Math

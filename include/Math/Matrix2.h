#pragma once

/// @file
/// The owning dense matrix of real numbers.
///
/// @code
/// using namespace Tervane::Math;
/// Matrix2 m(2, 3, 0.0);
/// m[Index(0, 1)] = 4.0;     // row 0, column 1
/// m[1][0];                  // the same element: a single index selects a column
/// @endcode

#include <Math/Detail/ElementArray.h>
#include <Math/Dimensions.h>
#include <Math/Export.h>
#include <Math/Index.h>
#include <System/Detail/Expected.h>

#include <cstddef>

namespace Tervane::Math {

namespace Detail {
struct ContainerAccess;
}

/// rows x columns doubles on a 64-byte boundary, column after column: element (r, c) lies at r + c * rows, so
/// that the storage can be handed to BLAS and LAPACK as it is, with the row count as leading dimension.
///
/// At most 2^61 - 1 elements: a request beyond that throws `std::length_error` ("vector too long") before
/// anything is allocated, and `std::bad_alloc` is thrown when memory is short. Access to elements is not
/// checked. Different matrices may be used from different threads; one may be read from several as long as
/// nobody writes to it.
class TVNMATH_API Matrix2 {
public:
    /// 0 x 0.
    Matrix2() noexcept = default;

    /// Every element `value`. Without elements nothing is allocated; the dimensions are kept all the same.
    Matrix2(Dimensions const& size, double const& value);

    /// Every element `value`.
    Matrix2(std::size_t rows, std::size_t columns, double const& value);

    /// A copy that allocates exactly what it needs.
    Matrix2(Matrix2 const& other) = default;

    /// Takes over the storage of `other`, which is left with none but still reports its old dimensions
    /// (compatibility C23).
    Matrix2(Matrix2&& other) noexcept = default;

    /// Copies elements and dimensions; this matrix's storage is used again when it suffices, and otherwise
    /// grows to the larger of the new count and one and a half times its capacity. So a matrix that is filled
    /// anew in a loop can be cleared by assigning a kept matrix of zeros: that allocates nothing and, in the
    /// cache, costs what memset costs.
    Matrix2& operator=(Matrix2 const& other) = default;

    /// Releases this matrix's storage and takes over that of `other`, which is left with none but with its
    /// dimensions.
    Matrix2& operator=(Matrix2&& other) noexcept = default;

    ~Matrix2();

    /// @name Elements
    /// @{

    /// The element at a row and a column.
    /// @pre the index lies in the matrix. A row or column of -1, as circuits number ground, compiles, becomes
    ///      the largest number there is, and writes outside the matrix.
    double& operator[](Index const& i) noexcept { return _elements[i.row() + i.column() * rows()]; }
    double const& operator[](Index const& i) const noexcept {
        return _elements[i.row() + i.column() * rows()];
    }
    /// @}

    /// @name Columns
    /// @{

    /// The address of the first element of column `c`, so that `m[c][r]` is element (r, c): the column comes
    /// first (compatibility C24). `m[i][j]` is the element that `m[Index(j, i)]` is, and with formulas of
    /// rows and columns the transposed one.
    /// @pre `c` is below columns()
    double* operator[](std::size_t c) noexcept { return data() + c * rows(); }
    double const* operator[](std::size_t c) const noexcept { return data() + c * rows(); }
    /// @}

    /// @name Shape
    /// @{

    /// The number of rows.
    std::size_t rows() const noexcept { return _dimensions.rows(); }
    /// The number of columns.
    std::size_t columns() const noexcept { return _dimensions.columns(); }

    /// Rows and columns. Not callable on a const matrix (compatibility C21).
    Dimensions size() noexcept { return _dimensions; }

    /// As many rows as columns; true for 0 x 0 (compatibility C25).
    bool isSquare() const noexcept { return rows() == columns(); }
    /// @}

    /// @name Storage
    /// @{

    /// The elements, column after column; null when there are none.
    double* data() noexcept { return _elements.data(); }
    double const* data() const noexcept { return _elements.data(); }
    /// @}

private:
    friend struct Detail::ContainerAccess;

    Detail::RealArray _elements;
    Dimensions _dimensions;
};

} // namespace Tervane::Math

extern template class TVNMATH_API
    Tervane::System::Expected<Tervane::Math::Matrix2, Tervane::System::ErrorCode2>;

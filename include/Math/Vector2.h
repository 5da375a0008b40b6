#pragma once

/// @file
/// The owning vector of real numbers, and its arithmetic.
///
/// @code
/// using namespace Tervane::Math;
/// Vector2 const time = linspace(0.0, 1e-3, 1000);
/// Vector2 const voltage = 5.0 * (1.0 - exp(time / -2e-4));
/// Vector2 const lastTen = voltage[makeSlice(-10, 1000, 1)];
/// @endcode

#include <Math/Detail/ElementArray.h>
#include <Math/Dimensions.h>
#include <Math/Export.h>
#include <Math/Slice.h>
#include <Math/VectorOrientation.h>
#include <Math/VectorView2.h>
#include <System/Detail/Expected.h>
#include <System/Detail/String2.h>

#include <cstddef>

namespace Tervane::Math {

/// A growable array of doubles on a 64-byte boundary, with an orientation that decides its shape.
///
/// A new vector is a column; the orientation of an existing one cannot be changed, it comes from what the
/// vector is made of. At most 2^61 - 1 elements (compatibility C20): a request beyond that throws
/// `std::length_error` ("vector too long") before anything is allocated, and `std::bad_alloc` is thrown when
/// memory is short.
///
/// Access to elements is not checked. Different vectors may be used from different threads; one vector may be
/// read from several as long as nobody writes to it.
class TVNMATH_API Vector2 {
public:
    /// Empty, a column.
    Vector2() noexcept = default;

    /// `n` zeros, a column.
    explicit Vector2(std::size_t n);

    /// `n` copies of `value`, a column.
    Vector2(std::size_t n, double const& value);

    /// A copy of the `n` doubles at `source`, a column.
    Vector2(double const* source, std::size_t n);

    /// A copy of what the view looks at, with its orientation.
    explicit Vector2(VectorView2 const& view);

    /// A copy whose capacity equals its length.
    Vector2(Vector2 const& other) = default;

    /// Takes over the storage of `other`, which is left empty with the orientation it had (compatibility
    /// C22). Allocates nothing.
    Vector2(Vector2&& other) noexcept = default;

    /// Copies elements and orientation; this vector's storage is used again when it suffices, and otherwise
    /// grows to the larger of the new length and one and a half times its capacity (compatibility C19).
    Vector2& operator=(Vector2 const& other) = default;

    /// Releases this vector's storage and takes over that of `other`, which is left empty. Assigning a vector
    /// to itself keeps its elements. Allocates nothing.
    Vector2& operator=(Vector2&& other) noexcept = default;

    ~Vector2();

    /// @name Elements
    /// @{

    /// @pre the index is below length(); for front() and back() the vector is not empty
    double& operator[](std::size_t i) noexcept { return _elements[i]; }
    double const& operator[](std::size_t i) const noexcept { return _elements[i]; }
    double& front() noexcept { return _elements[0]; }
    double const& front() const noexcept { return _elements[0]; }
    double& back() noexcept { return _elements[length() - 1]; }
    double const& back() const noexcept { return _elements[length() - 1]; }
    /// @}

    /// The selected elements as a new vector: a column, whatever this vector's orientation is (compatibility
    /// C17). See Slice for the rules of the selection.
    ///
    /// @pre the step is not 0, and the selected positions lie in this vector
    Vector2 operator[](Slice const& slice) const;

    /// @name Storage
    /// @{

    /// The address of the first element; null for a vector that never allocated.
    double* data() noexcept { return _elements.data(); }
    double const* data() const noexcept { return _elements.data(); }
    /// @}

    /// The number of elements.
    std::size_t length() const noexcept { return _elements.length(); }

    /// @name Shape
    /// size() and orientation() are not callable on a const vector (compatibility C21).
    /// @{

    /// The length of a column, otherwise 1.
    std::size_t rows() const noexcept;

    /// The length of a row, otherwise 1.
    std::size_t columns() const noexcept;

    /// (1, length) for a row, (length, 1) otherwise.
    Dimensions size() noexcept;

    /// Row or column.
    VectorOrientation orientation() noexcept { return _orientation; }
    /// @}

    /// Makes room for exactly `n` elements when there is less; keeps the elements.
    void reserve(std::size_t n);

    /// Shortens the vector to `n` elements, keeping its capacity, or lengthens it by copies of `value`,
    /// growing the storage by at least one half when it must grow.
    ///
    /// @return success, or the error -1 of the system category when the length is beyond the limit or memory
    ///         is short (compatibility C6); the vector is then as it was
    System::Expected<void, System::ErrorCode2> resize(std::size_t n, double const& value = 0.0);

    /// The elements as text, "[ 1, 2.5, 0.333333 ]", each with six significant digits; the same for both
    /// orientations. Of an empty vector "[  ]" (compatibility C26). Not callable on a const vector.
    System::Expected<System::String2, System::ErrorCode2> toString();

    /// @name Compound assignment
    /// @{

    /// this[k] = this[k] op right[k], or op the scalar, for each of this vector's elements, in place, where
    /// the execution policy says. Neither length nor orientation changes. An integer is converted to double.
    ///
    /// @pre the right operand is not shorter than this vector; a longer one is read in part
    Vector2& operator+=(Vector2 const& right);
    Vector2& operator+=(VectorView2 const& right);
    Vector2& operator+=(double const& right);
    Vector2& operator+=(int right);

    Vector2& operator-=(Vector2 const& right);
    Vector2& operator-=(VectorView2 const& right);
    Vector2& operator-=(double const& right);
    Vector2& operator-=(int right);

    Vector2& operator*=(Vector2 const& right);
    Vector2& operator*=(VectorView2 const& right);
    Vector2& operator*=(double const& right);
    Vector2& operator*=(int right);

    Vector2& operator/=(Vector2 const& right);
    Vector2& operator/=(VectorView2 const& right);
    Vector2& operator/=(double const& right);
    Vector2& operator/=(int right);
    Vector2& operator/=(std::size_t right);
    /// @}

    /// @name Negation
    /// @{

    /// Flips the sign of every element, so 0.0 becomes -0.0 (compatibility C33). Of an lvalue a new vector
    /// with this one's length and orientation; of an rvalue in place, giving this vector itself
    /// (compatibility C81).
    Vector2 operator-() const&;
    Vector2& operator-() &&;
    /// @}

private:
    friend struct Detail::ContainerAccess;

    Detail::RealArray _elements;
    VectorOrientation _orientation = Column;
};

/// @name Arithmetic
/// @{

/// result[k] = left[k] op right[k], a scalar standing for a vector of that value; computed in double, where
/// the execution policy says. An integer is converted to double.
///
/// The result's length and orientation are those of the operand whose storage receives it (compatibility
/// C30):
///  - a left `Vector2&&` lends its storage, the result is moved out of it and nothing is allocated;
///  - otherwise a right `Vector2&&` of `+` and `*` does;
///  - otherwise the result is new, allocated once and shaped as the vector operand, the left of two. A view
///    gives the shape only when there is no vector.
///
/// `-` and `/` with a right `Vector2&&` whose left operand is not one (compatibility C31 and C32):
///  - `-` negates the right operand in place and returns a new vector, that negation plus the left operand,
///    in the right operand's shape; the argument is left negated and its storage is not used;
///  - vector or view `/` vector walks the left operand's length and writes into the right operand's storage,
///    which becomes the result: elements beyond the left operand keep the right operand's values, and a left
///    operand that is longer than the right one writes past its end;
///  - scalar `/` vector works in place in the right operand's storage.
///
/// The set is irregular, and exact (compatibility C29): a view and a scalar combine by subtraction only, no
/// two views combine, and a `std::size_t` only divides. Any other integer type is ambiguous and does not
/// compile.
///
/// @pre operands that are read have at least the length of the operand whose elements are walked; a longer
///      one is read in part. Nothing checks this.
/// @throws std::bad_alloc, std::length_error when a new result cannot be allocated
TVNMATH_API Vector2 operator+(Vector2&& left, Vector2&& right);
TVNMATH_API Vector2 operator+(Vector2&& left, Vector2 const& right);
TVNMATH_API Vector2 operator+(Vector2&& left, VectorView2 const& right);
TVNMATH_API Vector2 operator+(Vector2&& left, double const& right);
TVNMATH_API Vector2 operator+(Vector2&& left, int right);
TVNMATH_API Vector2 operator+(Vector2 const& left, Vector2&& right);
TVNMATH_API Vector2 operator+(Vector2 const& left, Vector2 const& right);
TVNMATH_API Vector2 operator+(Vector2 const& left, VectorView2 const& right);
TVNMATH_API Vector2 operator+(Vector2 const& left, double const& right);
TVNMATH_API Vector2 operator+(Vector2 const& left, int right);
TVNMATH_API Vector2 operator+(VectorView2 const& left, Vector2&& right);
TVNMATH_API Vector2 operator+(VectorView2 const& left, Vector2 const& right);
TVNMATH_API Vector2 operator+(double const& left, Vector2&& right);
TVNMATH_API Vector2 operator+(double const& left, Vector2 const& right);
TVNMATH_API Vector2 operator+(int left, Vector2&& right);
TVNMATH_API Vector2 operator+(int left, Vector2 const& right);

TVNMATH_API Vector2 operator-(Vector2&& left, Vector2&& right);
TVNMATH_API Vector2 operator-(Vector2&& left, Vector2 const& right);
TVNMATH_API Vector2 operator-(Vector2&& left, VectorView2 const& right);
TVNMATH_API Vector2 operator-(Vector2&& left, double const& right);
TVNMATH_API Vector2 operator-(Vector2&& left, int right);
TVNMATH_API Vector2 operator-(Vector2 const& left, Vector2&& right);
TVNMATH_API Vector2 operator-(Vector2 const& left, Vector2 const& right);
TVNMATH_API Vector2 operator-(Vector2 const& left, VectorView2 const& right);
TVNMATH_API Vector2 operator-(Vector2 const& left, double const& right);
TVNMATH_API Vector2 operator-(Vector2 const& left, int right);
TVNMATH_API Vector2 operator-(VectorView2 const& left, Vector2&& right);
TVNMATH_API Vector2 operator-(VectorView2 const& left, Vector2 const& right);
TVNMATH_API Vector2 operator-(VectorView2 const& left, double const& right);
TVNMATH_API Vector2 operator-(VectorView2 const& left, int right);
TVNMATH_API Vector2 operator-(double const& left, Vector2&& right);
TVNMATH_API Vector2 operator-(double const& left, Vector2 const& right);
TVNMATH_API Vector2 operator-(double const& left, VectorView2 const& right);
TVNMATH_API Vector2 operator-(int left, Vector2&& right);
TVNMATH_API Vector2 operator-(int left, Vector2 const& right);
TVNMATH_API Vector2 operator-(int left, VectorView2 const& right);

TVNMATH_API Vector2 operator*(Vector2&& left, Vector2&& right);
TVNMATH_API Vector2 operator*(Vector2&& left, Vector2 const& right);
TVNMATH_API Vector2 operator*(Vector2&& left, VectorView2 const& right);
TVNMATH_API Vector2 operator*(Vector2&& left, double const& right);
TVNMATH_API Vector2 operator*(Vector2&& left, int right);
TVNMATH_API Vector2 operator*(Vector2 const& left, Vector2&& right);
TVNMATH_API Vector2 operator*(Vector2 const& left, Vector2 const& right);
TVNMATH_API Vector2 operator*(Vector2 const& left, VectorView2 const& right);
TVNMATH_API Vector2 operator*(Vector2 const& left, double const& right);
TVNMATH_API Vector2 operator*(Vector2 const& left, int right);
TVNMATH_API Vector2 operator*(VectorView2 const& left, Vector2&& right);
TVNMATH_API Vector2 operator*(VectorView2 const& left, Vector2 const& right);
TVNMATH_API Vector2 operator*(double const& left, Vector2&& right);
TVNMATH_API Vector2 operator*(double const& left, Vector2 const& right);
TVNMATH_API Vector2 operator*(int left, Vector2&& right);
TVNMATH_API Vector2 operator*(int left, Vector2 const& right);

TVNMATH_API Vector2 operator/(Vector2&& left, Vector2&& right);
TVNMATH_API Vector2 operator/(Vector2&& left, Vector2 const& right);
TVNMATH_API Vector2 operator/(Vector2&& left, VectorView2 const& right);
TVNMATH_API Vector2 operator/(Vector2&& left, double const& right);
TVNMATH_API Vector2 operator/(Vector2&& left, int right);
TVNMATH_API Vector2 operator/(Vector2&& left, std::size_t right);
TVNMATH_API Vector2 operator/(Vector2 const& left, Vector2&& right);
TVNMATH_API Vector2 operator/(Vector2 const& left, Vector2 const& right);
TVNMATH_API Vector2 operator/(Vector2 const& left, VectorView2 const& right);
TVNMATH_API Vector2 operator/(Vector2 const& left, double const& right);
TVNMATH_API Vector2 operator/(Vector2 const& left, int right);
TVNMATH_API Vector2 operator/(Vector2 const& left, std::size_t right);
TVNMATH_API Vector2 operator/(VectorView2 const& left, Vector2&& right);
TVNMATH_API Vector2 operator/(VectorView2 const& left, Vector2 const& right);
TVNMATH_API Vector2 operator/(double const& left, Vector2&& right);
TVNMATH_API Vector2 operator/(double const& left, Vector2 const& right);
TVNMATH_API Vector2 operator/(int left, Vector2&& right);
TVNMATH_API Vector2 operator/(int left, Vector2 const& right);
/// @}

} // namespace Tervane::Math

extern template class TVNMATH_API
    Tervane::System::Expected<Tervane::Math::Vector2, Tervane::System::ErrorCode2>;

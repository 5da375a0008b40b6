#pragma once

/// @file
/// The owning vector of complex numbers, and its arithmetic.
///
/// @code
/// using namespace Tervane::Math;
/// double const parts[] = {1.0, 2.0, 3.0, 4.0};
/// auto const z = ComplexVector2::fromData(parts, 4);      // (1, 2), (3, 4)
/// Vector2 const magnitudes = abs(2.0 * z.value());
/// @endcode

#include <Math/ComplexVectorView2.h>
#include <Math/Detail/ComplexArray.h>
#include <Math/Dimensions.h>
#include <Math/Export.h>
#include <Math/VectorOrientation.h>
#include <System/Expected.h>
#include <System/String2.h>

#include <cstddef>

namespace Tervane::Math {

class Vector2;

/// A growable array of complex doubles, real part first, with an orientation that decides its shape.
///
/// Unlike the real containers its storage comes from the ordinary heap, without a promised alignment beyond
/// 16 bytes (compatibility C27). At most 2^60 - 1 elements: a request beyond that throws `std::length_error`
/// ("vector too long") before anything is allocated, and `std::bad_alloc` is thrown when memory is short.
/// Nothing else is checked. Different vectors may be used from different threads; one may be read from
/// several as long as nobody writes to it.
class TVNMATH_API ComplexVector2 {
public:
    /// Empty, a column.
    ComplexVector2() noexcept = default;

    /// `n` times (0, 0), a column.
    explicit ComplexVector2(std::size_t n);

    /// A copy that allocates exactly what it needs.
    ComplexVector2(ComplexVector2 const& other) = default;

    /// Takes over the storage of `other`, which is left empty.
    ComplexVector2(ComplexVector2&& other) noexcept = default;

    /// Copies elements and orientation; this vector's storage is used again when it suffices.
    ComplexVector2& operator=(ComplexVector2 const& other) = default;

    /// Releases this vector's storage and takes over that of `other`, which is left empty.
    ComplexVector2& operator=(ComplexVector2&& other) noexcept = default;

    ~ComplexVector2();

    /// A column of count / 2 elements from interleaved pairs: element k is (values[2k], values[2k + 1]).
    ///
    /// @return the vector, or `MathErrc::OddComplexDataLength` when `count` is odd, or the error -1 of the
    ///         system category when the elements cannot be allocated
    static System::Expected<ComplexVector2, System::ErrorCode2> fromData(double const* values,
                                                                         std::size_t count);

    /// The elements as text, "[ (1,2), (0.5,-3) ]", each part with six significant digits. Of an empty vector
    /// "[  ]".
    System::Expected<System::String2, System::ErrorCode2> toString();

    /// A view of all elements with this vector's orientation. Not callable on a const vector.
    ComplexVectorView2 view() noexcept { return ComplexVectorView2(data(), length(), _orientation); }

    /// @name Storage
    /// @{

    /// The elements as interleaved doubles: re0, im0, re1, im1, …; null for a vector that never allocated.
    double* data() noexcept { return reinterpret_cast<double*>(_elements.data()); }
    double const* data() const noexcept { return reinterpret_cast<double const*>(_elements.data()); }
    /// @}

    /// Complex elements, not doubles.
    std::size_t length() const noexcept { return _elements.length(); }

    /// @name Shape
    /// Not callable on a const vector (compatibility C21).
    /// @{
    /// Row or column.
    VectorOrientation orientation() noexcept { return _orientation; }

    /// (1, length) for a row, (length, 1) otherwise.
    Dimensions size() noexcept;
    /// @}

    /// @name Compound assignment
    /// @{

    /// Multiplies or divides both parts of every element by the scalar, or by the element of `right` at the
    /// same place, in place, where the execution policy says. A division is a true one, not a multiplication
    /// by the reciprocal (compatibility C34).
    ///
    /// @pre `right` is not shorter than this vector; a longer one is read in part
    ComplexVector2& operator*=(double const& right);
    ComplexVector2& operator/=(double const& right);
    ComplexVector2& operator*=(Vector2 const& right);
    /// @}

private:
    friend struct Detail::ContainerAccess;

    Detail::ComplexArray _elements;
    VectorOrientation _orientation = Column;
};

/// @name Complex arithmetic
/// @{

/// With a scalar or a real vector, element by element, where the execution policy says. The result has the
/// length and the orientation of the complex operand. An rvalue operand lends its storage to the result,
/// which is moved out of it; otherwise the result is new and allocates once.
///
/// Scalar / vector is the complex quotient d / z of every element z = (a, b), by R. L. Smith's scaling
/// (Algorithm 116: Complex division, Comm. ACM 5(8), 1962): with |a| > |b|, r = b / a and t = r b + a give
/// (d + 0 r, 0 - d r) / t; otherwise r = a / b and t = r a + b give (d r + 0, 0 r - d) / t. A NaN in z, or a
/// t that is NaN or 0, gives (NaN, NaN), and z = 0 gives (d / a, 0 / a) (compatibility C35).
///
/// There is no operator between two complex vectors, no addition and no subtraction.
///
/// @pre a real vector is not shorter than the complex operand; a longer one is read in part. Nothing checks
///      this.
/// @throws std::bad_alloc when a new result cannot be allocated
TVNMATH_API ComplexVector2 operator*(ComplexVector2&& left, double const& right);
TVNMATH_API ComplexVector2 operator*(ComplexVector2 const& left, double const& right);
TVNMATH_API ComplexVector2 operator*(double const& left, ComplexVector2&& right);
TVNMATH_API ComplexVector2 operator*(double const& left, ComplexVector2 const& right);
TVNMATH_API ComplexVector2 operator*(ComplexVector2&& left, Vector2 const& right);
TVNMATH_API ComplexVector2 operator*(ComplexVector2 const& left, Vector2 const& right);
TVNMATH_API ComplexVector2 operator*(Vector2 const& left, ComplexVector2&& right);
TVNMATH_API ComplexVector2 operator*(Vector2 const& left, ComplexVector2 const& right);
TVNMATH_API ComplexVector2 operator*(ComplexVectorView2 const& left, Vector2 const& right);
TVNMATH_API ComplexVector2 operator/(ComplexVector2&& left, double const& right);
TVNMATH_API ComplexVector2 operator/(ComplexVector2 const& left, double const& right);
TVNMATH_API ComplexVector2 operator/(double const& left, ComplexVector2&& right);
TVNMATH_API ComplexVector2 operator/(double const& left, ComplexVector2 const& right);
/// @}

} // namespace Tervane::Math

extern template class TVNMATH_API
    Tervane::System::Expected<Tervane::Math::ComplexVector2, Tervane::System::ErrorCode2>;

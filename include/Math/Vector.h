#pragma once

/// @file
/// The owning vector of the legacy generation and its arithmetic.
///
/// @code
/// using namespace Tervane::Math;
/// Vector const t = Vector::linspace(0.0, 1.0, 5);
/// Vector x = 2.0 * t + 1.0;                     // 1, 1.5, 2, 2.5, 3; allocates once
/// x += t;
/// Vector const tail = x[makeSlice(-2, 5, 1)];   // the last two elements
/// Vector const both{t, x};                      // ten elements
/// @endcode

#include <Math/BasicObject.h>
#include <Math/Detail/StandardVector.h>
#include <Math/Dimensions.h>
#include <Math/Export.h>
#include <Math/Index.h>
#include <Math/Slice.h>
#include <Math/VectorOrientation.h>

#include <cstddef>
#include <initializer_list>

namespace Tervane::Math {

/// A vector that owns its elements, in one block on a 64-byte boundary. It answers the questions of a table:
/// a column has one column, a row one row. New vectors are columns unless a constructor says otherwise, and
/// only construction and assignment set the orientation.
///
/// Only at() checks an index, and nothing checks a length. A moved-from vector has no elements to ask about
/// and may only be destroyed or assigned to. Reading one vector from several threads is safe, writing needs
/// synchronisation. More than 2^61 - 1 elements are refused with std::length_error "vector too long" before
/// anything is allocated, and memory that cannot be had throws std::bad_alloc.
class TVNMATH_API Vector : public System::BasicObject<AbstractVector> {
public:
    /// Empty; allocates no elements.
    Vector();

    /// `n` zeros.
    explicit Vector(std::size_t n);

    /// `n` copies of `fill`.
    Vector(std::size_t n, double const& fill);

    /// A copy of the `n` doubles at `p`.
    Vector(double const* p, std::size_t n);

    /// A copy of a standard vector.
    explicit Vector(std::vector<double> const& values);

    /// The listed values.
    Vector(std::initializer_list<double> values);

    /// @name Concatenation
    /// @{

    /// The elements of the given vectors one after the other, as a column whatever the vectors are
    /// (compatibility C66).
    ///
    /// Copy a single vector with parentheses: in braces it is a list of one for some compilers, which makes a
    /// column of it, and a copy for others.
    Vector(Vector const* vectors, std::size_t n);
    Vector(std::initializer_list<Vector> vectors);
    /// @}

    /// A copy of any vector in its orientation. Length and elements are asked for through the virtual
    /// operations, the length again before each element (compatibility C67). Beware of an empty ViewVector:
    /// its length is 1, so an element is read that may not be there.
    explicit Vector(AbstractVector const& v);

    /// Zeros, as many as the larger of the dimensions; a row when there are several columns. The fill is not
    /// used (compatibility C65).
    Vector(Dimensions const& dimensions, double const& fill);

    /// A copy of elements and orientation; its capacity is its length.
    Vector(Vector const& other);
    /// Takes over the data object of `other`, which is left without one.
    Vector(Vector&& other) noexcept;

    /// Copies elements and orientation into the storage of this vector when it suffices; otherwise into new
    /// storage with room for half as many elements again as this vector had, at least.
    Vector& operator=(Vector const& other);
    /// Takes over the data object of `other`, which is left without one.
    Vector& operator=(Vector&& other) noexcept;
    ~Vector() override;

    /// @name Generators
    /// @{

    /// 0, 1, … stop - 1; empty when `stop` is not positive.
    static Vector arange(int stop);

    /// start, start + 1, … stop - 1, counted in wrapping 32-bit arithmetic; empty when `stop` is not above
    /// `start`.
    static Vector arange(int start, int stop);

    /// `n` points from `start` to `stop`, each the one before plus the step, so that rounding accumulates;
    /// the last is `stop` itself, also when it is the only one. Empty for no points.
    static Vector linspace(double const& start, double const& stop, std::size_t n);
    /// @}

    /// @name Elements
    /// @{

    /// Element `i`, unchecked; at() checks.
    double const& operator[](std::size_t i) const override;
    double& operator[](std::size_t i);

    /// By the index's row in a column, by its column in any other orientation.
    double const& operator[](Index const& i) const override;
    double& operator[](Index const& i);

    /// The selected elements as a new column, whatever the orientation of this vector (compatibility C17).
    /// Slice tells which ones.
    ///
    /// @pre the slice's step is not 0, and the selected positions lie in this vector
    Vector operator[](Slice const& slice) const;

    /// Element `i`, unchecked.
    double const& value(std::size_t i) const override;

    /// The first element; null when nothing was ever allocated.
    double const* data() const override;
    double* data();

    /// data(), and data() plus length(): so a vector can be iterated over.
    double const* begin() const;
    double* begin();
    double const* end() const;
    double* end();
    /// @}

    /// @name Storage
    /// @{

    /// Makes room for exactly `n` elements if there is less.
    void reserve(std::size_t n);

    /// Drops the tail, keeping the storage, or appends copies of `fill`.
    void resize(std::size_t n, double const& fill = 0.0);
    /// @}

    /// @name Shape
    /// An orientation that is neither Row nor Column is one by one (compatibility C78).
    /// @{

    /// The length of a row, otherwise 1.
    std::size_t columns() const override;
    /// The length of a column, otherwise 1.
    std::size_t rows() const override;
    /// (1, length) for a row, (length, 1) otherwise.
    Dimensions size() const override;
    /// The number of elements.
    std::size_t length() const override;
    /// Row or column.
    VectorOrientation orientation() const override;
    /// @}

    /// Sorts the elements in ascending order, on the calling thread; equal elements in any order,
    /// NaNs last.
    /// @return this vector
    Vector& sort();

    /// @name Comparison with a threshold
    /// @{

    /// For each element whether it is below or above `t`; false for a NaN. Not callable on a const vector
    /// (compatibility C21).
    std::vector<bool> operator<(double const& t);
    std::vector<bool> operator>(double const& t);
    /// @}

    /// A copy that is *not* negated (compatibility C70). To negate a named vector, write `-Vector(v)`.
    Vector operator-() const&;

    /// Flips the sign of every element in place, of zeros and NaNs too. The result takes the elements over.
    Vector operator-() &&;

    /// @name Compound assignment
    /// @{

    /// In place, for every element of this vector, on the element-wise dispatch. The forms for any vector
    /// read its elements in order from data() (compatibility C84).
    ///
    /// @pre `b` is not shorter than this vector; nothing checks this, so compare the lengths first
    Vector& operator+=(Vector const& b);
    Vector& operator-=(Vector const& b);
    Vector& operator+=(AbstractVector const& b);
    Vector& operator-=(AbstractVector const& b);
    /// @}
};

} // namespace Tervane::Math

/// @name Sum and difference of two vectors
/// @{

/// Element by element, on the element-wise dispatch. An rvalue operand lends its elements, its storage and
/// its orientation to the result, the left one if both are rvalues, and nothing is allocated.
///
/// The result has the length of that operand. `a - std::move(b)` with a named `a` runs over the length of `a`
/// all the same (compatibility C72).
///
/// At least one operand must be an rvalue: `a + b` with two named vectors does not compile (compatibility
/// C73). Write `Vector(a) + b`. The operators stand in the global namespace and nowhere else, so operators of
/// the same sign in a caller's namespace hide them, and Tervane::Math's own do so in that namespace. There,
/// call them by their full names, `::operator+` and `::operator-`.
TVNMATH_API Tervane::Math::Vector operator+(Tervane::Math::Vector&& a, Tervane::Math::Vector const& b);
TVNMATH_API Tervane::Math::Vector operator+(Tervane::Math::Vector&& a, Tervane::Math::Vector&& b);
TVNMATH_API Tervane::Math::Vector operator+(Tervane::Math::Vector const& a, Tervane::Math::Vector&& b);
TVNMATH_API Tervane::Math::Vector operator-(Tervane::Math::Vector&& a, Tervane::Math::Vector const& b);
TVNMATH_API Tervane::Math::Vector operator-(Tervane::Math::Vector&& a, Tervane::Math::Vector&& b);
TVNMATH_API Tervane::Math::Vector operator-(Tervane::Math::Vector const& a, Tervane::Math::Vector&& b);
/// @}

namespace Tervane::Math {

/// @name Product of two vectors
/// @{

/// Element by element; operands, lengths and orientation as in the sum. Of two named operands the left one is
/// copied.
TVNMATH_API Vector operator*(Vector&& a, Vector const& b);
TVNMATH_API Vector operator*(Vector&& a, Vector&& b);
TVNMATH_API Vector operator*(Vector const& a, Vector&& b);
TVNMATH_API Vector operator*(Vector const& a, Vector const& b);
/// @}

/// @name Vector and scalar
/// @{

/// Element by element, on the element-wise dispatch. The result takes over the elements of an rvalue vector
/// and is a copy of any other, in the vector's orientation. One form is different: `s * std::move(v)` copies,
/// and leaves `v` as it is (compatibility C71).
///
/// There is no scalar divided by a vector, and no quotient of two vectors.
TVNMATH_API Vector operator*(Vector&& v, double const& s);
TVNMATH_API Vector operator*(Vector const& v, double const& s);
TVNMATH_API Vector operator*(double const& s, Vector&& v);
TVNMATH_API Vector operator*(double const& s, Vector const& v);
TVNMATH_API Vector operator+(Vector&& v, double const& s);
TVNMATH_API Vector operator+(Vector const& v, double const& s);
TVNMATH_API Vector operator+(double const& s, Vector&& v);
TVNMATH_API Vector operator+(double const& s, Vector const& v);
TVNMATH_API Vector operator-(Vector&& v, double const& s);
TVNMATH_API Vector operator-(Vector const& v, double const& s);
TVNMATH_API Vector operator-(double const& s, Vector&& v);
TVNMATH_API Vector operator-(double const& s, Vector const& v);
TVNMATH_API Vector operator/(Vector&& v, double const& s);
TVNMATH_API Vector operator/(Vector const& v, double const& s);
/// @}

} // namespace Tervane::Math

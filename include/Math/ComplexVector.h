#pragma once

/// @file
/// The complex vector of the legacy generation, handles on its elements, and its products.
///
/// @code
/// double const pairs[] = {1.0, 2.0, 3.0, -4.0};
/// Tervane::Math::ComplexVector z;
/// z.setData(pairs, 2);                            // 1 + 2i, 3 - 4i
/// z[0].imag() = 0.0;
/// z = std::move(z) / 2.0;
/// std::complex<double> const second = z[1];       // 1.5 - 2i
/// @endcode

#include <Math/Detail/StandardVector.h>
#include <Math/Export.h>
#include <System/Object.h>

#include <compare>
#include <complex>
#include <cstddef>
#include <iterator>

namespace Tervane::Math {

class Vector;
namespace Detail {
struct LegacyAccess;
}

/// A handle on one element of a ComplexVector, through which it is read and written. Valid as long as the
/// vector keeps its storage.
///
/// Like a reference, it is bound once: assigning to it, be it a complex number or another handle, writes the
/// element.
class ComplexRef {
public:
    /// The element whose real part is at `p`; the imaginary part follows it.
    explicit ComplexRef(double* p) noexcept : _parts(p) {}
    /// A copy.
    ComplexRef(ComplexRef const&) noexcept = default;

    /// @{
    /// A part of the element, to be read and written.
    double& real() const noexcept { return _parts[0]; }
    double& imag() const noexcept { return _parts[1]; }
    /// @}

    /// The element's value.
    operator std::complex<double>() const noexcept { return {_parts[0], _parts[1]}; }

    /// Writes the element.
    ComplexRef const& operator=(std::complex<double> const& z) const noexcept {
        _parts[0] = z.real();
        _parts[1] = z.imag();
        return *this;
    }

    /// Becomes a copy of `other`.
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): a value goes through, nothing is released
    ComplexRef const& operator=(ComplexRef const& other) const noexcept {
        return *this = std::complex<double>(other);
    }

    /// Becomes a copy of `other`.
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): a value goes through, nothing is released
    ComplexRef& operator=(ComplexRef const& other) noexcept {
        static_cast<ComplexRef const&>(*this) = other;
        return *this;
    }

    /// Swaps the elements.
    friend void swap(ComplexRef a, ComplexRef b) noexcept {
        std::complex<double> const old = a;
        a = b;
        b = old;
    }

private:
    double* _parts;
};

/// A handle on one element of a const ComplexVector. Valid as long as the vector keeps its storage.
class ComplexView {
public:
    /// The element whose real part is at `p`; the imaginary part follows it.
    explicit ComplexView(double const* p) noexcept : _parts(p) {}

    /// @{
    /// A part of the element.
    double real() const noexcept { return _parts[0]; }
    double imag() const noexcept { return _parts[1]; }
    /// @}

    /// The element's value.
    operator std::complex<double>() const noexcept { return {_parts[0], _parts[1]}; }

private:
    double const* _parts;
};

/// A vector that owns complex elements, each a real part followed by an imaginary part. It is no table: it
/// has no shape and no orientation.
///
/// Nothing is checked. A moved-from vector may only be destroyed or assigned to. Reading one vector from
/// several threads is safe, writing needs synchronisation. More than 2^60 - 1 elements are refused with
/// std::length_error "vector too long", and memory that cannot be had throws std::bad_alloc.
class TVNMATH_API ComplexVector : public System::Object {
public:
    class iterator;

    /// Empty.
    ComplexVector();

    /// `n` zeros.
    explicit ComplexVector(std::size_t n);

    /// A copy of a standard vector.
    explicit ComplexVector(std::vector<std::complex<double>> const& values);

    /// A copy can be constructed but not assigned (compatibility C80).
    ComplexVector(ComplexVector const& other);
    /// Takes over what `other` holds.
    ComplexVector(ComplexVector&& other) noexcept;
    /// Takes over what `other` holds.
    ComplexVector& operator=(ComplexVector&& other) noexcept;
    ~ComplexVector() override;

    /// The number of complex elements.
    std::size_t length() const;

    /// @name Elements
    /// @{

    /// The real part of the first element; the imaginary part and the other elements follow.
    double* data();
    double const* data() const;

    ComplexRef operator[](std::size_t i);
    ComplexView operator[](std::size_t i) const;

    iterator begin();
    iterator end();
    /// @}

    /// @name Storage
    /// @{

    /// Makes room for exactly `n` elements if there is less.
    void reserve(std::size_t n);

    /// Replaces all elements by the `n` pairs of a real and an imaginary part at `p`: 2n doubles, which must
    /// not be elements of this vector (compatibility C85).
    void setData(double const* p, std::size_t n);
    /// @}

private:
    friend struct Detail::LegacyAccess;
};

/// Steps over whole elements, giving a ComplexRef on each. Random access; valid as long as the vector keeps
/// its storage.
class ComplexVector::iterator {
public:
    /// @{
    /// What the standard library asks of an iterator.
    using iterator_category = std::random_access_iterator_tag;
    using value_type = std::complex<double>;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = ComplexRef;
    /// @}

    /// Points nowhere.
    iterator() noexcept = default;

    /// At the element whose real part is at `p`.
    explicit iterator(double* p) noexcept : _parts(p) {}

    /// @{
    /// A handle on this element, or on the one n further on.
    ComplexRef operator*() const noexcept { return ComplexRef(_parts); }
    ComplexRef operator[](difference_type n) const noexcept { return *(*this + n); }
    /// @}

    /// @name Steps
    /// @{

    /// A step over whole elements, without a check.
    iterator& operator++() noexcept { return *this += 1; }
    iterator& operator--() noexcept { return *this -= 1; }

    iterator operator++(int) noexcept {
        iterator const before = *this;
        ++*this;
        return before;
    }

    iterator operator--(int) noexcept {
        iterator const before = *this;
        --*this;
        return before;
    }

    iterator& operator+=(difference_type n) noexcept {
        _parts += 2 * n;
        return *this;
    }

    iterator& operator-=(difference_type n) noexcept { return *this += -n; }
    /// @}

    friend iterator operator+(iterator it, difference_type n) noexcept { return it += n; }
    friend iterator operator+(difference_type n, iterator it) noexcept { return it += n; }
    friend iterator operator-(iterator it, difference_type n) noexcept { return it -= n; }
    friend difference_type operator-(iterator a, iterator b) noexcept { return (a._parts - b._parts) / 2; }

    friend bool operator==(iterator, iterator) noexcept = default;
    friend auto operator<=>(iterator, iterator) noexcept = default;

private:
    double* _parts = nullptr;
};

} // namespace Tervane::Math

/// @name Complex vector and scalar
/// @{

/// Both parts of every element multiplied by `s`, or divided by it: not multiplied by 1/s. On the
/// element-wise dispatch. The result takes over the elements of an rvalue vector and is a copy of any other.
///
/// The operators stand in the global namespace and nowhere else, so operators of the same sign in a caller's
/// namespace hide them, and Tervane::Math's own do so in that namespace. There, call them by
/// their full names, `::operator*` and `::operator/`.
TVNMATH_API Tervane::Math::ComplexVector operator*(Tervane::Math::ComplexVector&& z, double const& s);
TVNMATH_API Tervane::Math::ComplexVector operator*(Tervane::Math::ComplexVector const& z, double const& s);
TVNMATH_API Tervane::Math::ComplexVector operator*(double const& s, Tervane::Math::ComplexVector&& z);
TVNMATH_API Tervane::Math::ComplexVector operator*(double const& s, Tervane::Math::ComplexVector const& z);
TVNMATH_API Tervane::Math::ComplexVector operator/(Tervane::Math::ComplexVector&& z, double const& s);
TVNMATH_API Tervane::Math::ComplexVector operator/(Tervane::Math::ComplexVector const& z, double const& s);
/// @}

namespace Tervane::Math {

/// @name Complex vector and real vector
/// @{

/// Both parts of element i of `z` multiplied by v[i], for every element of `z`, on the calling thread
/// whatever the execution policy.
///
/// The result takes over the elements of an rvalue `z` and is a copy of any other. Either way `v` is copied
/// once and nobody reads the copy, so there always is an allocation (compatibility C75).
/// @pre `v` is not shorter than `z`; nothing checks this, so compare the lengths first
TVNMATH_API ComplexVector operator*(ComplexVector&& z, Vector const& v);
TVNMATH_API ComplexVector operator*(Vector const& v, ComplexVector&& z);
TVNMATH_API ComplexVector operator*(ComplexVector const& z, Vector const& v);
TVNMATH_API ComplexVector operator*(Vector const& v, ComplexVector const& z);
/// @}

} // namespace Tervane::Math

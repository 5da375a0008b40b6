#pragma once

#include "foundation/Transform.h"

#include <Math/ComplexVector2.h>
#include <Math/ComplexVectorView2.h>
#include <Math/Matrix2.h>
#include <Math/Vector2.h>
#include <Math/VectorView2.h>

#include <complex>
#include <cstddef>
#include <utility>

namespace Tervane::Math::Detail {

/// What the library's own sources may do with containers and callers may not: ask a constant one for its
/// orientation, and make a result whose elements are about to be written, in one pass over memory.
struct ContainerAccess {
    static VectorOrientation orientation(Vector2 const& v) noexcept { return v._orientation; }
    static VectorOrientation orientation(VectorView2 const& v) noexcept { return v._orientation; }

    static double* elements(Vector2& v) noexcept { return v._elements.data(); }
    static double const* elements(Vector2 const& v) noexcept { return v._elements.data(); }
    static double const* elements(VectorView2 const& v) noexcept { return v._data; }
    static std::complex<double>* elements(ComplexVector2& v) noexcept { return v._elements.data(); }
    static std::complex<double> const* elements(ComplexVector2 const& v) noexcept {
        return v._elements.data();
    }
    static std::complex<double> const* elements(ComplexVectorView2 const& v) noexcept {
        return reinterpret_cast<std::complex<double> const*>(v._data);
    }

    static std::size_t length(auto const& v) noexcept { return v.length(); }

    /// Whether a matrix has every element that its shape says. A moved-from one, and a copy of it, has none
    /// (compatibility C23).
    static bool isWhole(Matrix2 const& m) noexcept { return m._elements.length() == m.rows() * m.columns(); }

    /// A vector of `n` elements for the caller to write.
    static Vector2 uninitialised(std::size_t n, VectorOrientation orientation) {
        Vector2 result;
        result._elements = RealArray(Uninitialised{}, n);
        result._orientation = orientation;
        return result;
    }

    /// A complex vector of `n` elements for the caller to write.
    static ComplexVector2 uninitialisedComplex(std::size_t n, VectorOrientation orientation) {
        ComplexVector2 result;
        result._elements = ComplexArray(Uninitialised{}, n);
        result._orientation = orientation;
        return result;
    }

    static Vector2 shapedAs(Vector2 const& v) { return uninitialised(v.length(), v._orientation); }
    static Vector2 shapedAs(VectorView2 const& v) { return uninitialised(v.length(), v._orientation); }
    static ComplexVector2 shapedAs(ComplexVector2 const& v) {
        return uninitialisedComplex(v.length(), v._orientation);
    }
    static ComplexVector2 shapedAs(ComplexVectorView2 const& v) {
        return uninitialisedComplex(v.length(), v._orientation);
    }
};

template<>
struct AccessTo<Vector2> : ContainerAccess {};
template<>
struct AccessTo<VectorView2> : ContainerAccess {};
template<>
struct AccessTo<ComplexVector2> : ContainerAccess {};
template<>
struct AccessTo<ComplexVectorView2> : ContainerAccess {};

} // namespace Tervane::Math::Detail

#pragma once

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
    static VectorOrientation orientation(ComplexVector2 const& v) noexcept { return v._orientation; }
    static VectorOrientation orientation(ComplexVectorView2 const& v) noexcept { return v._orientation; }

    static std::complex<double>* elements(ComplexVector2& v) noexcept { return v._elements.data(); }
    static std::complex<double> const* elements(ComplexVector2 const& v) noexcept {
        return v._elements.data();
    }

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
};

} // namespace Tervane::Math::Detail

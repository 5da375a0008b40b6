#pragma once

/// @file
/// A read-only look at complex numbers that somebody else owns.
///
/// @code
/// Tervane::Math::ComplexVector2 spectrum(513);
/// // All but element 0:
/// auto withoutDC = spectrum.view().sliced(1, std::numeric_limits<std::size_t>::max());
/// @endcode

#include <Math/Export.h>
#include <Math/VectorOrientation.h>
#include <System/Expected.h>

#include <cstddef>
#include <limits>

namespace Tervane::Math {

namespace Detail {
struct ContainerAccess;
}

/// A pointer to interleaved real and imaginary parts, a number of complex elements and an orientation.
///
/// A view owns nothing and keeps nothing alive: it is valid as long as the memory that it looks at is and
/// stays where it is. Nothing is checked. A view may be read from several threads as long as nobody writes to
/// what it looks at.
class TVNMATH_API ComplexVectorView2 {
public:
    /// Looks at nothing: null, length 0, a column.
    ComplexVectorView2() noexcept = default;

    /// The real part of the first element; its imaginary part follows, then the next element.
    double const* data() const noexcept { return _data; }

    /// Complex elements, not doubles.
    std::size_t length() const noexcept { return _length; }

    /// Row or column. Not callable on a const view (compatibility C21).
    VectorOrientation orientation() noexcept { return _orientation; }

    /// A view of `length` elements from element `start` on; the largest `std::size_t` means all that are
    /// left.
    ///
    /// The slice is a column, whatever this view's orientation is (compatibility C28). Not callable on a
    /// const view (compatibility C21).
    ///
    /// @pre the slice lies in this view; compare with length() first
    ComplexVectorView2 sliced(std::size_t start, std::size_t length) noexcept {
        bool const isRest = length == std::numeric_limits<std::size_t>::max();
        return ComplexVectorView2(_data + 2 * start, isRest ? _length - start : length, Column);
    }

private:
    friend class ComplexVector2;
    friend struct Detail::ContainerAccess;

    ComplexVectorView2(double const* data, std::size_t length, VectorOrientation orientation) noexcept
        : _data(data), _length(length), _orientation(orientation) {}

    double const* _data = nullptr;
    std::size_t _length = 0;
    VectorOrientation _orientation = Column;
};

} // namespace Tervane::Math

extern template class TVNMATH_API
    Tervane::System::Expected<Tervane::Math::ComplexVectorView2, Tervane::System::ErrorCode2>;

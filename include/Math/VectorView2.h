#pragma once

/// @file
/// A read-only look at real numbers that somebody else owns.
///
/// @code
/// using namespace Tervane::Math;
/// Matrix2 const samples(100, 2, 0.0);
/// VectorView2 secondColumn(samples, 1);
/// Vector2 const copy(secondColumn.sliced(10, 5));    // elements 10 to 14
/// @endcode

#include <Math/Dimensions.h>
#include <Math/Export.h>
#include <Math/VectorOrientation.h>
#include <System/Detail/Expected.h>

#include <cstddef>

namespace Tervane::Math {

class Matrix2;

namespace Detail {
struct ContainerAccess;
}

/// A pointer, a length and an orientation.
///
/// A view owns nothing and keeps nothing alive: it is valid as long as the memory that it looks at is and
/// stays where it is. It offers no way to change an element. Nothing is checked. A view may be read from
/// several threads as long as nobody writes to what it looks at.
class TVNMATH_API VectorView2 {
public:
    /// Looks at nothing: null, length 0, a column.
    VectorView2() noexcept = default;

    /// Looks at the `length` doubles at `data`.
    VectorView2(double const* data, std::size_t length, VectorOrientation orientation) noexcept
        : _data(data), _length(length), _orientation(orientation) {}

    /// Looks at one column of `m`, which is contiguous; always a column vector.
    ///
    /// @pre `column` is below `m.columns()`
    VectorView2(Matrix2 const& m, std::size_t column) noexcept;

    /// Element `i`, unchecked.
    /// @pre `i` is below length()
    double const& operator[](std::size_t i) const noexcept { return _data[i]; }

    /// The address of the first element.
    double const* data() const noexcept { return _data; }
    /// The number of elements.
    std::size_t length() const noexcept { return _length; }

    /// @name Shape
    /// Not callable on a const view (compatibility C21).
    /// @{
    /// Row or column.
    VectorOrientation orientation() noexcept { return _orientation; }

    /// (1, length) for a row, (length, 1) otherwise.
    Dimensions size() noexcept;
    /// @}

    /// A view of `count` elements from element `offset` on, with this view's orientation (compatibility C28).
    /// Not callable on a const view.
    ///
    /// @pre `offset + count` does not exceed length()
    VectorView2 sliced(std::size_t offset, std::size_t count) noexcept {
        return VectorView2(_data + offset, count, _orientation);
    }

private:
    friend struct Detail::ContainerAccess;

    double const* _data = nullptr;
    std::size_t _length = 0;
    VectorOrientation _orientation = Column;
};

} // namespace Tervane::Math

extern template class TVNMATH_API
    Tervane::System::Expected<Tervane::Math::VectorView2, Tervane::System::ErrorCode2>;

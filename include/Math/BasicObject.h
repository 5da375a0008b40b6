#pragma once

/// @file
/// Joins an abstract table to a private data object. The base of Vector, ViewVector and Matrix, and of no use
/// by itself: it leaves the table's operations to the class that derives from it.

#include <Math/AbstractMatrix.h>
#include <Math/AbstractVector.h>
#include <Math/Export.h>
#include <System/Object.h>

#include <utility>

namespace Tervane::Math {
class Matrix;
class Vector;
class ViewVector;
namespace Detail {
struct LegacyAccess;
}
} // namespace Tervane::Math

namespace Tervane::System {

/// A `T` whose state lives in one data object that it owns. Movable; copying is left to the derived class,
/// which knows what its data object holds. A moved-from object has no data object and may only be destroyed
/// or assigned to.
///
/// @tparam T Math::AbstractMatrix or Math::AbstractVector
template<class T>
class TVNMATH_API BasicObject : public T {
public:
    /// Owns a plain ObjectData.
    BasicObject() : _object(new ObjectData) {}
    /// Takes over what `other` holds.
    BasicObject(BasicObject&& other) noexcept : T(std::move(other)), _object(std::move(other._object)) {}
    /// Takes over what `other` holds.
    BasicObject& operator=(BasicObject&& other) noexcept {
        _object = std::move(other._object);
        return *this;
    }
    ~BasicObject() override;

private:
    friend class Math::Matrix;
    friend class Math::Vector;
    friend class Math::ViewVector;
    friend struct Math::Detail::LegacyAccess;

    /// Owns the data object of a derived class of this library, which alone can link it.
    TVNMATH_LOCAL explicit BasicObject(UniquePointer<ObjectData>&& data) noexcept
        : _object(std::move(data)) {}

    /// @{
    /// The data object, which the concrete class casts to its own type; null after a move.
    ObjectData* _data() noexcept { return _object.get(); }
    ObjectData const* _data() const noexcept { return _object.get(); }
    /// @}

    UniquePointer<ObjectData> _object;
};

template<class T>
BasicObject<T>::~BasicObject() = default;

extern template class BasicObject<Math::AbstractMatrix>;
extern template class BasicObject<Math::AbstractVector>;

} // namespace Tervane::System

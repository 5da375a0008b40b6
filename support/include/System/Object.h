#pragma once

/// @file
/// The base of the polymorphic classes of the old generation, which keep their state in a private data
/// object.
///
/// @code
/// using namespace Tervane::System;
///
/// struct CounterData : ObjectData {
///     int count = 0;
/// };
///
/// class Counter : public Object {
/// public:
///     Counter() : Object(UniquePointer<ObjectData>(new CounterData)) {}
///     int count() const { return static_cast<CounterData const*>(objectData())->count; }
/// };
/// @endcode

#include <System/Export.h>

#include <utility>

namespace Tervane::System {

/// The base of every private data object.
class TVNCORE_API ObjectData {
public:
    ObjectData() noexcept;
    /// A copy of `other`.
    ObjectData(ObjectData const& other) noexcept;
    virtual ~ObjectData();
    /// Becomes a copy of `other`.
    ObjectData& operator=(ObjectData const& other) noexcept;
};

/// The sole owner of an object, or of none. Copying is not possible; a moved-from pointer owns nothing.
template<class T>
class UniquePointer {
public:
    /// Owns nothing.
    UniquePointer() noexcept = default;
    /// Takes over @p object, which may be null and is deleted in the end as a `T`.
    explicit UniquePointer(T* object) noexcept : _object(object) {}
    /// Takes over what `other` holds.
    UniquePointer(UniquePointer&& other) noexcept : _object(std::exchange(other._object, nullptr)) {}
    ~UniquePointer() { delete _object; }
    /// Deletes what was owned before and takes over what @p other owns; assigning a pointer to itself changes
    /// nothing.
    UniquePointer& operator=(UniquePointer&& other) noexcept {
        if (this != &other)
            delete std::exchange(_object, std::exchange(other._object, nullptr));
        return *this;
    }

    /// The object, or null.
    T* get() const noexcept { return _object; }
    /// @{
    /// The object. @pre There is one; `get()` can be tested.
    T* operator->() const noexcept { return _object; }
    T& operator*() const noexcept { return *_object; }
    /// @}
    /// Whether there is an object.
    explicit operator bool() const noexcept { return _object != nullptr; }

private:
    T* _object = nullptr;
};

extern template class TVNCORE_API UniquePointer<ObjectData>;

/// The base of the polymorphic classes: owns a data object. A moved-from object has none and may only be
/// destroyed or assigned to.
class TVNCORE_API Object {
public:
    /// Takes over what `other` holds.
    Object(Object&& other) noexcept;
    /// Takes over what `other` holds.
    Object& operator=(Object&& other) noexcept;
    virtual ~Object();

protected:
    /// Takes over @p data.
    explicit Object(UniquePointer<ObjectData>&& data) noexcept;

    /// @{
    /// The data object, which the derived class knows the type of; null after a move.
    ObjectData* objectData() noexcept { return _data.get(); }
    ObjectData const* objectData() const noexcept { return _data.get(); }
    /// @}

private:
    UniquePointer<ObjectData> _data;
};

} // namespace Tervane::System

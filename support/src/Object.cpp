#include <System/Object.h>

namespace Tervane::System {

ObjectData::ObjectData() noexcept = default;
ObjectData::ObjectData(ObjectData const& other) noexcept = default;
ObjectData::~ObjectData() = default;
ObjectData& ObjectData::operator=(ObjectData const& other) noexcept = default;

template class UniquePointer<ObjectData>;

Object::Object(UniquePointer<ObjectData>&& data) noexcept : _data(std::move(data)) {}
Object::Object(Object&& other) noexcept = default;
Object& Object::operator=(Object&& other) noexcept = default;
Object::~Object() = default;

} // namespace Tervane::System

#include <System/Expected.h>
#include <System/String2.h>

namespace Tervane::System {

template class Expected<String2, ErrorCode2>;

Expected<void, ErrorCode2>::Expected(Expected const& other) noexcept : _hasValue(other._hasValue) {
    if (!_hasValue)
        ::new (static_cast<void*>(std::addressof(_error))) ErrorCode2(other._error);
}

Expected<void, ErrorCode2>::Expected(Expected&& other) noexcept : Expected(std::as_const(other)) {}

Expected<void, ErrorCode2>::~Expected() {
    if (!_hasValue)
        _error.~ErrorCode2();
}

Expected<void, ErrorCode2>& Expected<void, ErrorCode2>::operator=(Expected const& other) noexcept {
    if (this != &other) {
        this->~Expected();
        ::new (static_cast<void*>(this)) Expected(other);
    }
    return *this;
}

Expected<void, ErrorCode2>& Expected<void, ErrorCode2>::operator=(Expected&& other) noexcept {
    return *this = std::as_const(other);
}

void Expected<void, ErrorCode2>::swap(Expected& other) noexcept {
    Expected former(*this);
    *this = other;
    other = former;
}

void Expected<void, ErrorCode2>::value() & {
    std::as_const(*this).value();
}
void Expected<void, ErrorCode2>::value() const& {
    if (!_hasValue)
        detail::throwBadExpectedAccess(_error);
}
void Expected<void, ErrorCode2>::value() && {
    std::as_const(*this).value();
}
void Expected<void, ErrorCode2>::value() const&& {
    std::as_const(*this).value();
}

} // namespace Tervane::System

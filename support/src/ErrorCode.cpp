#include "NarrowText.h"

#include <System/ErrorCode.h>

#include <utility>

namespace Tervane::System {

ErrorCategory::ErrorCategory() noexcept = default;
ErrorCategory::ErrorCategory(ErrorCategory const& other) noexcept = default;
ErrorCategory& ErrorCategory::operator=(ErrorCategory const& other) noexcept = default;
ErrorCategory::~ErrorCategory() = default;

ErrorCode::ErrorCode() noexcept : _code(0), _category(nullptr), _state(State::NoError) {}
ErrorCode::ErrorCode(int code, ErrorCategory const& category) noexcept
    : _code(code), _category(&category), _state(State::Coded) {}
ErrorCode::ErrorCode(ErrorCode const& other) = default;
ErrorCode::ErrorCode(ErrorCode&& other) noexcept = default;
ErrorCode::~ErrorCode() = default;
ErrorCode& ErrorCode::operator=(ErrorCode const& other) {
    // Copying the text may fail; this code is then as it was.
    ErrorCode copy(other);
    return *this = std::move(copy);
}
ErrorCode& ErrorCode::operator=(ErrorCode&& other) noexcept = default;

void ErrorCode::assign(ErrorCode const& other) {
    *this = other;
}

void ErrorCode::assign(std::exception const& exception) noexcept {
    String description;
    try {
        description = String(detail::textOf(exception.what()).data());
    } catch (std::exception const&) {
        // What is reported may itself be a lack of memory.
    }
    _code = -1;
    _category = nullptr;
    _state = State::Described;
    _description = std::move(description);
}

void ErrorCode::assignUnknown() noexcept {
    _code = -1;
    _category = nullptr;
    _state = State::Unknown;
    _description = String();
}

String ErrorCode::message() const {
    switch (_state) {
    case State::NoError:
        return {};
    case State::Coded:
        return _category->message(_code);
    case State::Described:
        return _description;
    case State::Unknown:
        break;
    }
    return u8"unknown error";
}

} // namespace Tervane::System

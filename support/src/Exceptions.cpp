#include <System/Exceptions.h>
#include <System/Expected.h>
#include <System/String2.h>

#include <utility>

namespace Tervane::System {

namespace detail {

StringIntermediary::StringIntermediary(ErrorCode2 const& code)
    : _text(std::string(code.category().name()) + ' ' + std::to_string(code.code()) + ": "
            + code.message().narrow()) {}

StringIntermediary::~StringIntermediary() = default;

char const* StringIntermediary::data() const noexcept {
    return _text.data();
}

std::size_t StringIntermediary::length() const noexcept {
    return _text.length();
}

void throwBadExpectedAccess(ErrorCode2 const& error) {
    ErrorCode2 copy(error);
    throw bad_expected_access<ErrorCode2>(std::move(copy));
}

} // namespace detail

Exception2::Exception2(std::string message) : _message(std::move(message)) {}
Exception2::Exception2(Exception2 const& other) = default;
Exception2::Exception2(Exception2&& other) noexcept = default;
Exception2::~Exception2() = default;
Exception2& Exception2::operator=(Exception2 const& other) = default;
Exception2& Exception2::operator=(Exception2&& other) noexcept = default;
char const* Exception2::what() const noexcept {
    return _message.c_str();
}

RuntimeError::RuntimeError(RuntimeError const& other) = default;
RuntimeError::RuntimeError(RuntimeError&& other) noexcept = default;
RuntimeError::~RuntimeError() = default;
RuntimeError& RuntimeError::operator=(RuntimeError const& other) = default;
RuntimeError& RuntimeError::operator=(RuntimeError&& other) noexcept = default;

namespace {

std::string messageOf(ErrorCode2 const& code) {
    detail::StringIntermediary const text(code);
    return {text.data(), text.length()};
}

} // namespace

SystemError::SystemError(ErrorCode2 code) : RuntimeError(messageOf(code)), _code(code) {}
SystemError::SystemError(SystemError const& other) = default;
SystemError::SystemError(SystemError&& other) noexcept = default;
SystemError::~SystemError() = default;
SystemError& SystemError::operator=(SystemError const& other) = default;
SystemError& SystemError::operator=(SystemError&& other) noexcept = default;

bad_expected_access<void>::bad_expected_access() noexcept = default;
bad_expected_access<void>::bad_expected_access(bad_expected_access const& other) noexcept = default;
bad_expected_access<void>::bad_expected_access(bad_expected_access&& other) noexcept = default;
bad_expected_access<void>::~bad_expected_access() = default;
bad_expected_access<void>&
bad_expected_access<void>::operator=(bad_expected_access const& other) noexcept = default;
bad_expected_access<void>&
bad_expected_access<void>::operator=(bad_expected_access&& other) noexcept = default;
char const* bad_expected_access<void>::what() const noexcept {
    return "bad expected access";
}

bad_expected_access<ErrorCode2>::bad_expected_access(ErrorCode2 error) noexcept : _error(std::move(error)) {}
bad_expected_access<ErrorCode2>::bad_expected_access(bad_expected_access const& other) noexcept = default;
bad_expected_access<ErrorCode2>::bad_expected_access(bad_expected_access&& other) noexcept = default;
bad_expected_access<ErrorCode2>::~bad_expected_access() = default;
bad_expected_access<ErrorCode2>&
bad_expected_access<ErrorCode2>::operator=(bad_expected_access const& other) noexcept = default;
bad_expected_access<ErrorCode2>&
bad_expected_access<ErrorCode2>::operator=(bad_expected_access&& other) noexcept = default;
char const* bad_expected_access<ErrorCode2>::what() const noexcept {
    return bad_expected_access<void>::what();
}

} // namespace Tervane::System

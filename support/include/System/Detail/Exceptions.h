#pragma once

/// @file
/// The exceptions in which failures travel inside the libraries, and the one that `Expected::value()` throws.
///
/// @code
/// try {
///     return result.value();
/// } catch (bad_expected_access<ErrorCode2> const& exception) {
///     report(exception.error().message());
/// }
/// @endcode
///
/// Each class has its type information in this library alone, so each can be thrown in one module and caught
/// by type in another.

#include <System/Detail/ErrorCode2.h>
#include <System/Export.h>

#include <cstddef>
#include <exception>
#include <string>
#include <utility>

namespace Tervane::System {

namespace detail {

/// An error code as narrow text for the message of an exception: "category number: message".
class TVNCORE_API StringIntermediary {
public:
    explicit StringIntermediary(ErrorCode2 const& code);
    StringIntermediary(StringIntermediary const&) = delete;
    StringIntermediary& operator=(StringIntermediary const&) = delete;
    ~StringIntermediary();

    /// The text; valid as long as this object lives.
    char const* data() const noexcept;
    /// The number of bytes at `data()`, no terminator counted.
    std::size_t length() const noexcept;

private:
    std::string _text;
};

} // namespace detail

/// An exception with a message of its own.
class TVNCORE_API Exception2 : public std::exception {
public:
    explicit Exception2(std::string message);
    Exception2(Exception2 const& other);
    Exception2(Exception2&& other) noexcept;
    ~Exception2() override;
    Exception2& operator=(Exception2 const& other);
    Exception2& operator=(Exception2&& other) noexcept;

    /// The message.
    char const* what() const noexcept override;

private:
    std::string _message;
};

/// A failure that only shows when the program runs.
class TVNCORE_API RuntimeError : public Exception2 {
public:
    using Exception2::Exception2;
    RuntimeError(RuntimeError const& other);
    RuntimeError(RuntimeError&& other) noexcept;
    ~RuntimeError() override;
    RuntimeError& operator=(RuntimeError const& other);
    RuntimeError& operator=(RuntimeError&& other) noexcept;
};

/// A failure that has an error code; its message names the category, the number and the category's text.
class TVNCORE_API SystemError : public RuntimeError {
public:
    explicit SystemError(ErrorCode2 code);
    SystemError(SystemError const& other);
    SystemError(SystemError&& other) noexcept;
    ~SystemError() override;
    SystemError& operator=(SystemError const& other);
    SystemError& operator=(SystemError&& other) noexcept;

    /// The code that the exception was made with.
    ErrorCode2 const& code() const noexcept { return _code; }

private:
    ErrorCode2 _code;
};

template<class E>
class bad_expected_access;

/// The value of a result was asked for while it holds an error, whatever the type of the error.
template<>
class TVNCORE_API bad_expected_access<void> : public std::exception {
public:
    bad_expected_access() noexcept;
    bad_expected_access(bad_expected_access const& other) noexcept;
    bad_expected_access(bad_expected_access&& other) noexcept;
    ~bad_expected_access() override;
    bad_expected_access& operator=(bad_expected_access const& other) noexcept;
    bad_expected_access& operator=(bad_expected_access&& other) noexcept;

    /// "bad expected access".
    char const* what() const noexcept override;
};

/// The value of a result was asked for while it holds an `ErrorCode2`; owns a copy of that error.
template<>
class TVNCORE_API bad_expected_access<ErrorCode2> : public bad_expected_access<void> {
public:
    explicit bad_expected_access(ErrorCode2 error) noexcept;
    bad_expected_access(bad_expected_access const& other) noexcept;
    bad_expected_access(bad_expected_access&& other) noexcept;
    ~bad_expected_access() override;
    bad_expected_access& operator=(bad_expected_access const& other) noexcept;
    bad_expected_access& operator=(bad_expected_access&& other) noexcept;

    /// "bad expected access".
    char const* what() const noexcept override;

    /// @{
    /// The error that the result holds.
    ErrorCode2& error() & noexcept { return _error; }
    ErrorCode2 const& error() const& noexcept { return _error; }
    ErrorCode2&& error() && noexcept { return std::move(_error); }
    ErrorCode2 const&& error() const&& noexcept { return static_cast<ErrorCode2 const&&>(_error); }
    /// @}

private:
    ErrorCode2 _error;
};

} // namespace Tervane::System

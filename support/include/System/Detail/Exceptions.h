#pragma once

/// @file
/// The exceptions in which failures travel inside the libraries, and the one that `Expected::value()` throws.
///
/// @code
/// using namespace Tervane::System;
/// Expected<String2, ErrorCode2> const digits = toString(42);
/// try {
///     std::cout << digits.value() << '\n';
/// } catch (bad_expected_access<ErrorCode2> const& exception) {
///     std::cerr << exception.error().message() << '\n';
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
    /// An exception that says @p message.
    explicit Exception2(std::string message);
    /// A copy of `other`.
    Exception2(Exception2 const& other);
    /// Takes over what `other` holds.
    Exception2(Exception2&& other) noexcept;
    ~Exception2() override;
    /// Becomes a copy of `other`.
    Exception2& operator=(Exception2 const& other);
    /// Takes over what `other` holds.
    Exception2& operator=(Exception2&& other) noexcept;

    /// The message.
    char const* what() const noexcept override;

private:
    std::string _message;
};

/// A failure that only shows when the program runs.
class TVNCORE_API RuntimeError : public Exception2 {
public:
    /// Made as an Exception2 is.
    using Exception2::Exception2;
    /// A copy of `other`.
    RuntimeError(RuntimeError const& other);
    /// Takes over what `other` holds.
    RuntimeError(RuntimeError&& other) noexcept;
    ~RuntimeError() override;
    /// Becomes a copy of `other`.
    RuntimeError& operator=(RuntimeError const& other);
    /// Takes over what `other` holds.
    RuntimeError& operator=(RuntimeError&& other) noexcept;
};

/// A failure that has an error code; its message names the category, the number and the category's text.
class TVNCORE_API SystemError : public RuntimeError {
public:
    /// An exception that carries @p code and says its text.
    explicit SystemError(ErrorCode2 code);
    /// A copy of `other`.
    SystemError(SystemError const& other);
    /// Takes over what `other` holds.
    SystemError(SystemError&& other) noexcept;
    ~SystemError() override;
    /// Becomes a copy of `other`.
    SystemError& operator=(SystemError const& other);
    /// Takes over what `other` holds.
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
    /// A copy of `other`.
    bad_expected_access(bad_expected_access const& other) noexcept;
    /// Takes over what `other` holds.
    bad_expected_access(bad_expected_access&& other) noexcept;
    ~bad_expected_access() override;
    /// Becomes a copy of `other`.
    bad_expected_access& operator=(bad_expected_access const& other) noexcept;
    /// Takes over what `other` holds.
    bad_expected_access& operator=(bad_expected_access&& other) noexcept;

    /// "bad expected access".
    char const* what() const noexcept override;
};

/// The value of a result was asked for while it holds an `ErrorCode2`; owns a copy of that error.
template<>
class TVNCORE_API bad_expected_access<ErrorCode2> : public bad_expected_access<void> {
public:
    /// An exception that owns @p error.
    explicit bad_expected_access(ErrorCode2 error) noexcept;
    /// A copy of `other`.
    bad_expected_access(bad_expected_access const& other) noexcept;
    /// Takes over what `other` holds.
    bad_expected_access(bad_expected_access&& other) noexcept;
    ~bad_expected_access() override;
    /// Becomes a copy of `other`.
    bad_expected_access& operator=(bad_expected_access const& other) noexcept;
    /// Takes over what `other` holds.
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

#pragma once

/// @file
/// Error codes of the old generation, which operations report through a trailing `ErrorCode&`.
///
/// @code
/// using namespace Tervane::Math;
/// using namespace Tervane::System;
/// Matrix const a(2, 3, 1.0);
/// ErrorCode error;
/// Matrix const product = a.multiply(a, error);
/// if (error.hasError()) {
///     std::cerr << error.message() << '\n';    // dimensions mismatch
/// }
/// @endcode

#include <System/Export.h>
#include <System/String.h>

#include <exception>

namespace Tervane::System {

/// What a family of old-generation codes means: its name and a text for each code.
///
/// A category is one immutable object for the whole process and may be used from any thread.
class TVNCORE_API ErrorCategory {
public:
    virtual ~ErrorCategory();

    /// The text of @p code for a person to read.
    virtual String message(int code) const = 0;
    /// The category's name.
    virtual String name() const = 0;

protected:
    ErrorCategory() noexcept;
    /// A copy of `other`.
    ErrorCategory(ErrorCategory const& other) noexcept;
    /// Becomes a copy of `other`.
    ErrorCategory& operator=(ErrorCategory const& other) noexcept;
};

/// How an operation of the old generation ended: without an error, with a code of a category, with the
/// description of an exception, or with a failure of which nothing is known.
class TVNCORE_API ErrorCode {
public:
    /// No error.
    ErrorCode() noexcept;
    /// @p code of @p category, which must outlive this object. Any code is an error, 0 included
    /// (compatibility C9).
    ErrorCode(int code, ErrorCategory const& category) noexcept;
    /// A copy of `other`.
    ErrorCode(ErrorCode const& other);
    /// Takes over what `other` holds.
    ErrorCode(ErrorCode&& other) noexcept;
    virtual ~ErrorCode();
    /// Becomes a copy of `other`.
    ErrorCode& operator=(ErrorCode const& other);
    /// Takes over what `other` holds.
    ErrorCode& operator=(ErrorCode&& other) noexcept;

    /// Takes over the state of @p other: its code, its category and its text.
    void assign(ErrorCode const& other);
    /// Describes a caught exception by its `what()`. If memory for the text is lacking, the text is left out.
    void assign(std::exception const& exception) noexcept;
    /// Says that something failed and nothing more is known.
    void assignUnknown() noexcept;

    /// Whether there is an error, of whatever kind.
    bool hasError() const noexcept { return _state != State::NoError; }
    /// Whether there is an error of which nothing is known.
    bool isUnknown() const noexcept { return _state == State::Unknown; }
    /// The code; 0 without an error, -1 when it is unknown or describes an exception.
    int code() const noexcept { return _code; }
    /// The category of the code; null without an error, and when it is unknown or describes an exception.
    ErrorCategory const* category() const noexcept { return _category; }
    /// The category's text for the code, the `what()` of the exception, "unknown error", or nothing without
    /// an error.
    String message() const;

private:
    enum class State { NoError, Coded, Described, Unknown };

    int _code;
    ErrorCategory const* _category;
    State _state;
    String _description;
};

/// Makes an `ErrorCode` of an enumerator of `E`; each enumeration of codes brings its own specialisation.
template<class E>
class ErrorBuilder;

} // namespace Tervane::System

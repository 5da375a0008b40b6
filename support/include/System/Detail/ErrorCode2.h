#pragma once

/// @file
/// Error codes of the current generation: a number, and the category that gives it a meaning.
///
/// @code
/// using namespace Tervane::System;
/// ErrorCode2 const code = std::errc::result_out_of_range;
/// if (code == ErrorCode2(std::errc::result_out_of_range)) {
///     std::cerr << code.category().name() << ": " << code.message() << '\n';
/// }
/// @endcode
///
/// Compare codes, never messages: the messages are for people.

#include <System/Export.h>

#include <concepts>
#include <system_error>
#include <type_traits>

namespace Tervane::System {

class ErrorCode2;
class String2;

/// What a family of error codes means: its name and a text for each code.
///
/// A category is one object for the whole process, and categories are the same only if they are the same
/// object. The objects are immutable and may be used from any thread.
class TVNCORE_API ErrorCategory2 {
public:
    ErrorCategory2(ErrorCategory2 const&) = delete;
    ErrorCategory2& operator=(ErrorCategory2 const&) = delete;
    virtual ~ErrorCategory2();

    /// The text of @p code for a person to read.
    virtual String2 message(int code) const = 0;
    /// The category's name, zero-terminated; lives as long as the category.
    virtual char const* name() const = 0;

protected:
    ErrorCategory2() noexcept;
};

/// Turns an enumerator of `E` into an error code.
///
/// An enumeration takes part by a specialisation whose `ErrorCode2 operator()(E) const` builds the code. It
/// must be declared before the first use of the enumeration as an error.
template<class E>
struct ErrorCodeEnumConstructor;

/// An enumeration whose enumerators are error codes: it has an `ErrorCodeEnumConstructor`.
template<class E>
concept ErrorCodeEnumeration = std::is_enum_v<E> && requires(E enumerator) {
    requires std::same_as<decltype(ErrorCodeEnumConstructor<E>{}(enumerator)), ErrorCode2>;
};

/// A code together with its category; a small value, copied without failure.
class TVNCORE_API ErrorCode2 {
public:
    /// @p code of @p category, which must outlive this object.
    ErrorCode2(int code, ErrorCategory2 const& category) noexcept : _code(code), _category(&category) {}

    /// The code of an enumerator, through `ErrorCodeEnumConstructor<E>`.
    template<ErrorCodeEnumeration E>
    ErrorCode2(E enumerator) : ErrorCode2(ErrorCodeEnumConstructor<E>{}(enumerator)) {}

    /// The counterpart of an error code of the standard library.
    ///
    /// Codes of the standard generic, system, future and iostream categories keep their number and get the
    /// category of the same name. Any other category has no counterpart: the result is `ErrorCode2(-1,
    /// system_error_category())`.
    static ErrorCode2 fromStandard(std::error_code const& code) noexcept;

    /// The number, as it was given.
    int code() const noexcept { return _code; }
    /// The category that gives the number its meaning.
    ErrorCategory2 const& category() const noexcept { return *_category; }
    /// The category's text for the code.
    String2 message() const;

    /// Whether both have the same number and the same category object.
    friend bool operator==(ErrorCode2 const& left, ErrorCode2 const& right) noexcept {
        return left._code == right._code && left._category == right._category;
    }

private:
    int _code;
    ErrorCategory2 const* _category;
};

/// @{
/// The four standard categories, with the messages that the standard library's categories of the same names
/// give.
///
/// "generic" is for `std::errc`, "system" for the codes of the operating system, "future" for
/// `std::future_errc` and "iostream" for `std::io_errc`. Each function returns the same object on every call,
/// from any thread; the objects are never destroyed.
TVNCORE_API ErrorCategory2 const& generic_error_category() noexcept;
TVNCORE_API ErrorCategory2 const& system_error_category() noexcept;
TVNCORE_API ErrorCategory2 const& future_error_category() noexcept;
TVNCORE_API ErrorCategory2 const& iostream_error_category() noexcept;
/// @}

/// Enumerators of `std::errc` are codes of the generic category.
template<>
struct TVNCORE_API ErrorCodeEnumConstructor<std::errc> {
    /// The code of @p enumerator in generic_error_category().
    ErrorCode2 operator()(std::errc enumerator) const noexcept;
};

} // namespace Tervane::System

// Messages are strings, so whoever includes this header alone gets the complete string type. It comes last
// because the functions that make strings return results that hold the error codes above.
#include <System/Detail/String2.h>

#pragma once

/// @file
/// `String2`, the current string type, and the two functions that make one with a result to test.
///
/// @code
/// using namespace Tervane::System;
/// String2 text = u8"Unrecognised error (";
/// Expected<String2, ErrorCode2> const digits = toString(12);
/// text = std::move(text) + (digits ? digits->data() : u8"?") + u8")";
/// @endcode

#include <System/Export.h>

#include <cstddef>
#include <iosfwd>
#include <string>

namespace Tervane::System {

class ErrorCode2;
class String2;
template<class T, class E>
class Expected;

/// Writes the decimal digits of @p number, with a leading `-` when it is negative; the locale has no
/// influence.
///
/// @return the text, or `ErrorCode2(-1, system_error_category())` when its storage cannot be allocated. No
///         other allocation is made.
TVNCORE_API Expected<String2, ErrorCode2> toString(int number);

/// Makes a string of the @p length bytes at @p bytes after checking that they are well-formed UTF-8.
///
/// Overlong forms, surrogates, code points above U+10FFFF and sequences that end too early are malformed. A
/// zero byte is a character like any other. @p bytes may be null when @p length is 0.
///
/// @return the string, `std::errc::illegal_byte_sequence` for malformed bytes, or
///         `ErrorCode2(-1, system_error_category())` when the storage cannot be allocated.
TVNCORE_API Expected<String2, ErrorCode2> utf8ToUtf8(char const* bytes, std::size_t length);

/// UTF-8 text that owns its bytes.
///
/// A moved-from string is empty. An empty string owns no storage. Constant operations may run on several
/// threads at once.
class TVNCORE_API String2 {
public:
    /// The empty string.
    String2() noexcept;
    /// Copies the zero-terminated @p text, which is trusted to be UTF-8.
    String2(char8_t const* text);
    /// A copy of `other`.
    String2(String2 const& other);
    /// Takes over what `other` holds.
    String2(String2&& other) noexcept;
    ~String2();
    /// Becomes a copy of `other`.
    String2& operator=(String2 const& other);
    /// Takes over what `other` holds.
    String2& operator=(String2&& other) noexcept;

    /// The bytes, followed by a zero; never null. Valid until the string is changed, moved from or destroyed.
    char8_t const* data() const noexcept;
    /// The number of bytes, the terminating zero not counted.
    std::size_t length() const noexcept;
    /// The same bytes as a narrow string.
    std::string narrow() const;

    /// Whether both hold the same bytes.
    TVNCORE_API friend bool operator==(String2 const& left, String2 const& right) noexcept;

    /// @{
    /// Concatenates, in the storage of the argument that is given up when that is large enough.
    ///
    /// The zero-terminated text may be part of the given-up string.
    TVNCORE_API friend String2 operator+(String2&& left, char8_t const* right);
    TVNCORE_API friend String2 operator+(char8_t const* left, String2&& right);
    /// @}

    /// Writes the bytes to @p stream.
    TVNCORE_API friend std::ostream& operator<<(std::ostream& stream, String2 const& text);

    TVNCORE_API friend Expected<String2, ErrorCode2> utf8ToUtf8(char const* bytes, std::size_t length);

private:
    TVNCORE_LOCAL String2(void const* bytes, std::size_t length);
    /// Puts the zero-terminated @p text in front of the byte at @p position.
    TVNCORE_LOCAL void insert(std::size_t position, char8_t const* text);

    // A bare pointer: the header of the standard owning ones is larger than all others here together.
    char8_t* _text = nullptr;
    std::size_t _length = 0;
    std::size_t _capacity = 0;
};

} // namespace Tervane::System

// The two functions above return a complete type to whoever includes this header alone. It comes last because
// the result type itself is built on strings.
#include <System/Detail/Expected.h>

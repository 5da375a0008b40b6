#pragma once

/// @file
/// `String`, the string type of the old generation.
///
/// @code
/// Tervane::System::String const name = u8"math_la";
/// std::string const narrow = name.narrow();
/// @endcode

#include <System/Export.h>
#include <System/String2.h>

#include <cstddef>
#include <iosfwd>
#include <string>

namespace Tervane::System {

/// UTF-8 text that owns its bytes; a polymorphic class.
///
/// A moved-from string is empty. Constant operations may run on several threads at once.
class TVNCORE_API String {
public:
    /// The empty string.
    String() noexcept;
    /// Copies the zero-terminated @p text, which is trusted to be UTF-8.
    String(char8_t const* text);
    /// A copy of `other`.
    String(String const& other);
    /// Takes over what `other` holds.
    String(String&& other) noexcept;
    virtual ~String();
    /// Becomes a copy of `other`.
    String& operator=(String const& other);
    /// Takes over what `other` holds.
    String& operator=(String&& other) noexcept;

    /// The bytes, followed by a zero; never null. Valid until the string is changed, moved from or destroyed.
    char8_t const* data() const noexcept;
    /// The number of bytes, the terminating zero not counted.
    std::size_t length() const noexcept;
    /// The same bytes as a narrow string.
    std::string narrow() const;

    /// Whether both hold the same bytes.
    TVNCORE_API friend bool operator==(String const& left, String const& right) noexcept;

    /// Writes the bytes to @p stream.
    TVNCORE_API friend std::ostream& operator<<(std::ostream& stream, String const& text);

private:
    String2 _text;
};

} // namespace Tervane::System

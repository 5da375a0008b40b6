#include <System/String.h>

#include <ostream>

namespace Tervane::System {

String::String() noexcept = default;
String::String(char8_t const* text) : _text(text) {}
String::String(String const& other) = default;
String::String(String&& other) noexcept = default;
String::~String() = default;
String& String::operator=(String const& other) = default;
String& String::operator=(String&& other) noexcept = default;

char8_t const* String::data() const noexcept {
    return _text.data();
}
std::size_t String::length() const noexcept {
    return _text.length();
}
std::string String::narrow() const {
    return _text.narrow();
}

bool operator==(String const& left, String const& right) noexcept {
    return left._text == right._text;
}

std::ostream& operator<<(std::ostream& stream, String const& text) {
    return stream << text._text;
}

} // namespace Tervane::System

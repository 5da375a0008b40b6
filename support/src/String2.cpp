#include "NarrowText.h"

#include <System/Expected.h>
#include <System/Guard.h>
#include <System/String2.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <functional>
#include <limits>
#include <ostream>
#include <string_view>
#include <utility>

namespace Tervane::System {

namespace {

using Byte = unsigned char;

std::size_t lengthOf(char8_t const* text) noexcept {
    return std::char_traits<char8_t>::length(text);
}

bool isContinuation(Byte byte) noexcept {
    return (byte & 0xC0U) == 0x80U;
}

/// The number of bytes of the well-formed sequence at @p bytes, of which @p available can be read; 0 if there
/// is none.
///
/// Only the second byte's range depends on the first byte: it shuts out overlong forms (E0, F0), surrogates
/// (ED) and what lies above U+10FFFF (F4).
std::size_t sequenceLength(Byte const* bytes, std::size_t available) noexcept {
    Byte const lead = bytes[0];
    if (lead < 0x80U)
        return 1;
    if (lead < 0xC2U || lead > 0xF4U)
        return 0;
    std::size_t const length = lead < 0xE0U ? 2 : lead < 0xF0U ? 3 : 4;
    if (available < length)
        return 0;
    Byte const lowest = lead == 0xE0U ? 0xA0U : lead == 0xF0U ? 0x90U : 0x80U;
    Byte const highest = lead == 0xEDU ? 0x9FU : lead == 0xF4U ? 0x8FU : 0xBFU;
    if (bytes[1] < lowest || bytes[1] > highest)
        return 0;
    return std::all_of(bytes + 2, bytes + length, isContinuation) ? length : 0;
}

bool isUtf8(char const* bytes, std::size_t length) noexcept {
    auto const* const start = reinterpret_cast<Byte const*>(bytes);
    for (std::size_t i = 0; i < length;) {
        std::size_t const step = sequenceLength(start + i, length - i);
        if (step == 0)
            return false;
        i += step;
    }
    return true;
}

} // namespace

String2::String2() noexcept = default;

String2::String2(char8_t const* text) : String2(text, lengthOf(text)) {}

String2::String2(void const* bytes, std::size_t length) {
    if (length != 0) {
        _text = new char8_t[length + 1];
        std::memcpy(_text, bytes, length);
        _text[length] = u8'\0';
        _length = length;
        _capacity = length;
    }
}

String2::String2(String2 const& other) : String2(other.data(), other._length) {}

String2::String2(String2&& other) noexcept
    : _text(std::exchange(other._text, nullptr)),
      _length(std::exchange(other._length, 0)),
      _capacity(std::exchange(other._capacity, 0)) {}

String2::~String2() {
    delete[] _text;
}

String2& String2::operator=(String2 const& other) {
    if (this != &other)
        *this = String2(other);
    return *this;
}

String2& String2::operator=(String2&& other) noexcept {
    if (this != &other) {
        delete[] _text;
        _text = std::exchange(other._text, nullptr);
        _length = std::exchange(other._length, 0);
        _capacity = std::exchange(other._capacity, 0);
    }
    return *this;
}

char8_t const* String2::data() const noexcept {
    return _text != nullptr ? _text : u8"";
}

std::size_t String2::length() const noexcept {
    return _length;
}

std::string String2::narrow() const {
    return {reinterpret_cast<char const*>(data()), _length};
}

bool operator==(String2 const& left, String2 const& right) noexcept {
    return left._length == right._length && std::memcmp(left.data(), right.data(), left._length) == 0;
}

String2 operator+(String2&& left, char8_t const* right) {
    left.insert(left._length, right);
    return std::move(left);
}

String2 operator+(char8_t const* left, String2&& right) {
    right.insert(0, left);
    return std::move(right);
}

std::ostream& operator<<(std::ostream& stream, String2 const& text) {
    return stream << std::string_view(reinterpret_cast<char const*>(text.data()), text.length());
}

void String2::insert(std::size_t position, char8_t const* text) {
    std::size_t const added = lengthOf(text);
    if (added == 0)
        return;
    std::size_t const total = _length + added;
    std::less_equal<> const notAfter;
    bool const partOfThis = notAfter(data(), text) && notAfter(text, data() + _length);
    if (total <= _capacity && !partOfThis) {
        std::memmove(_text + position + added, data() + position, _length - position);
        std::memcpy(_text + position, text, added);
    } else {
        // Half as much again, so that a chain of concatenations allocates only now and then.
        std::size_t const capacity = std::max(total, _capacity + _capacity / 2);
        auto* const grown = new char8_t[capacity + 1];
        std::memcpy(grown, data(), position);
        std::memcpy(grown + position, text, added);
        std::memcpy(grown + position + added, data() + position, _length - position);
        delete[] _text;
        _text = grown;
        _capacity = capacity;
    }
    _length = total;
    _text[total] = u8'\0';
}

Expected<String2, ErrorCode2> toString(int number) {
    // All digits, one more that is not full, and the sign.
    char digits[std::numeric_limits<int>::digits10 + 2];
    char const* const end = std::to_chars(std::begin(digits), std::end(digits), number).ptr;
    return utf8ToUtf8(digits, static_cast<std::size_t>(end - digits));
}

Expected<String2, ErrorCode2> utf8ToUtf8(char const* bytes, std::size_t length) {
    return guard<String2>([&]() -> Expected<String2, ErrorCode2> {
        if (!isUtf8(bytes, length))
            return std::errc::illegal_byte_sequence;
        return String2(bytes, length);
    });
}

namespace detail {

String2 textOf(std::string_view narrow) {
    if (auto text = utf8ToUtf8(narrow.data(), narrow.size()))
        return *std::move(text);
    std::string ascii(narrow);
    std::replace_if(
        ascii.begin(), ascii.end(), [](char c) { return static_cast<Byte>(c) >= 0x80U; }, '?');
    return utf8ToUtf8(ascii.data(), ascii.size()).value();
}

} // namespace detail

} // namespace Tervane::System

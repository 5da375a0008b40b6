// Arbitrary bytes through utf8ToUtf8 against a decoder that shares no code with it, and sequences of string
// operations against std::string.

#include "fuzz/Fuzz.h"

#include <System/Expected.h>
#include <System/String.h>
#include <System/String2.h>

#include <string>
#include <utility>

namespace Tervane::Math::Fuzz {

namespace {

/// Decodes code point after code point and looks at their values afterwards.
bool isWellFormed(std::string const& bytes) {
    for (std::size_t i = 0; i < bytes.size();) {
        auto const lead = static_cast<std::uint8_t>(bytes[i]);
        std::size_t const length = lead < 0x80         ? 1
                                   : (lead >> 5) == 6  ? 2
                                   : (lead >> 4) == 14 ? 3
                                   : (lead >> 3) == 30 ? 4
                                                       : 0;
        if (length == 0 || bytes.size() - i < length)
            return false;
        std::uint32_t codePoint = length == 1 ? lead : lead & (0x7FU >> length);
        for (std::size_t k = 1; k < length; ++k) {
            auto const byte = static_cast<std::uint8_t>(bytes[i + k]);
            if (byte / 64 != 2)
                return false;
            codePoint = codePoint * 64 + byte % 64;
        }
        constexpr std::uint32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
        bool const isSurrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
        if (codePoint < smallest[length] || codePoint > 0x10FFFF || isSurrogate)
            return false;
        i += length;
    }
    return true;
}

void requireText(System::String2 const& text, std::string const& expected) {
    require(text.length() == expected.size(), "a string's length");
    require(text.narrow() == expected, "a string's bytes");
    require(text.data()[text.length()] == u8'\0', "a string ends with a zero");
}

/// Text of a few characters with no zero among them.
std::string shortText(Input& input) {
    std::string text(input.below(24), ' ');
    for (char& c : text)
        c = static_cast<char>('!' + input.below(90));
    return text;
}

char8_t const* utf8(std::string const& text) {
    return reinterpret_cast<char8_t const*>(text.c_str());
}

void stringOperations(Input& input) {
    constexpr std::size_t count = 3;
    std::array<System::String2, count> strings;
    std::array<std::string, count> models;
    for (int step = 0; step < 40 && !input.isUsedUp(); ++step) {
        std::size_t const i = input.below(count);
        std::size_t const j = input.below(count);
        switch (input.below(8)) {
        case 0:
            models[i] = shortText(input);
            strings[i] = System::String2(utf8(models[i]));
            break;
        case 1:
            strings[i] = strings[j];
            models[i] = models[j];
            break;
        case 2:
            strings[i] = std::move(strings[j]);
            if (i != j)
                models[i] = std::exchange(models[j], {});
            break;
        case 3: {
            std::string const tail = shortText(input);
            strings[i] = std::move(strings[i]) + utf8(tail);
            models[i] += tail;
            break;
        }
        case 4: {
            std::string const head = shortText(input);
            strings[i] = utf8(head) + std::move(strings[i]);
            models[i] = head + models[i];
            break;
        }
        case 5: // a part of the string itself
            if (models[i].find('\0') == std::string::npos) {
                std::size_t const from = input.below(models[i].size() + 1);
                std::string const part = models[i].substr(from);
                strings[i] = std::move(strings[i]) + (strings[i].data() + from);
                models[i] += part;
                if (models[i].size() > 4096) {
                    strings[i] = System::String2();
                    models[i].clear();
                }
            }
            break;
        case 6: {
            System::String const old(utf8(models[i].substr(0, models[i].find('\0'))));
            System::String copy(old);
            System::String taken(std::move(copy));
            copy = taken;
            require(copy == old && taken == old, "an old string's copies are equal");
            break;
        }
        default: {
            int const number = input.number<int>();
            models[i] = std::to_string(number);
            strings[i] = System::toString(number).value();
            break;
        }
        }
        for (std::size_t k = 0; k < count; ++k)
            requireText(strings[k], models[k]);
        require((strings[i] == strings[j]) == (models[i] == models[j]), "equality of strings");
    }
}

} // namespace

void fuzzText(Input& input) {
    if (input.flag()) {
        stringOperations(input);
        return;
    }
    std::vector<std::uint8_t> const rest = input.rest();
    std::string const bytes(rest.begin(), rest.end());
    auto const text = System::utf8ToUtf8(bytes.data(), bytes.size());
    require(text.has_value() == isWellFormed(bytes), "exactly well-formed text is taken");
    if (text)
        requireText(*text, bytes);
    else
        require(text.error() == System::ErrorCode2(std::errc::illegal_byte_sequence),
                "the error of malformed text");
}

} // namespace Tervane::Math::Fuzz

#include <System/Expected.h>
#include <System/String2.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <locale>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_set>
#include <utility>

namespace Tervane::System {

namespace {

using namespace std::string_view_literals;

static_assert(std::is_nothrow_move_constructible_v<String2> && std::is_nothrow_move_assignable_v<String2>);
static_assert(std::is_copy_constructible_v<String2> && std::is_copy_assignable_v<String2>);

/// The string of these bytes, which must be UTF-8.
String2 checked(std::string_view bytes) {
    return utf8ToUtf8(bytes.data(), bytes.size()).value();
}

TEST(String2, KeepsTheBytesItIsBuiltFrom) {
    String2 const text = u8"caf\u00e9";
    EXPECT_EQ(text.length(), 5U);
    EXPECT_EQ(std::memcmp(text.data(), "caf\xC3\xA9", 6), 0);
    EXPECT_EQ(text.narrow(), "caf\xC3\xA9");
}

TEST(String2, EmptyTextHasATerminator) {
    EXPECT_EQ(String2(u8"").length(), 0U);
    EXPECT_EQ(*String2(u8"").data(), u8'\0');
    EXPECT_EQ(*String2().data(), u8'\0');
    EXPECT_EQ(String2().narrow(), "");
    EXPECT_EQ(String2(), String2(u8""));
}

TEST(String2, CopiesAreIndependent) {
    String2 text = u8"text";
    String2 const copy(text);
    EXPECT_EQ(copy, text);
    EXPECT_NE(copy.data(), text.data());
    String2 assigned = u8"longer than the other";
    assigned = text;
    EXPECT_EQ(assigned, text);
    text = std::move(text) + u8"!";
    EXPECT_EQ(copy, u8"text");
    EXPECT_EQ(assigned, u8"text");
}

TEST(String2, MovesTakeTheStorageAndLeaveTheSourceEmpty) {
    String2 text = u8"text";
    char8_t const* const bytes = text.data();
    String2 moved(std::move(text));
    EXPECT_EQ(moved.data(), bytes);
    EXPECT_EQ(text.length(), 0U);
    EXPECT_EQ(*text.data(), u8'\0');
    text = std::move(moved);
    EXPECT_EQ(text.data(), bytes);
    EXPECT_EQ(moved.length(), 0U);
    moved = std::move(moved) + u8"again";
    EXPECT_EQ(moved, u8"again");
}

TEST(String2, AssignmentToItselfChangesNothing) {
    String2 text = u8"text";
    String2& same = text;
    text = same;
    EXPECT_EQ(text, u8"text");
    text = std::move(same);
    EXPECT_EQ(text, u8"text");
}

TEST(String2, EqualWithTheSameBytes) {
    EXPECT_TRUE(String2(u8"ab") == String2(u8"ab"));
    EXPECT_TRUE(String2(u8"ab") == u8"ab");
    EXPECT_FALSE(String2(u8"ab") == String2(u8"ac"));
    EXPECT_FALSE(String2(u8"ab") == String2(u8"abc"));
    EXPECT_FALSE(String2(u8"") == String2(u8"a"));
    EXPECT_TRUE(checked("a\0b"sv) == checked("a\0b"sv));
    EXPECT_FALSE(checked("a\0b"sv) == checked("a\0c"sv));
    EXPECT_FALSE(checked("a\0"sv) == checked("a"sv));
}

TEST(String2, StreamsItsBytes) {
    std::ostringstream stream;
    stream << String2(u8"caf\u00e9") << checked("\0!"sv) << String2();
    EXPECT_EQ(stream.str(), "caf\xC3\xA9\0!"sv);
}

TEST(String2Concatenation, JoinsOnEitherSide) {
    EXPECT_EQ(String2(u8"ab") + u8"cd", u8"abcd");
    EXPECT_EQ(u8"ab" + String2(u8"cd"), u8"abcd");
    EXPECT_EQ(u8"Unrecognised error (" + String2(u8"12") + u8")", u8"Unrecognised error (12)");
}

TEST(String2Concatenation, EmptyOperandsChangeNothing) {
    EXPECT_EQ(String2() + u8"", u8"");
    EXPECT_EQ(u8"" + String2(), u8"");
    EXPECT_EQ(String2() + u8"a", u8"a");
    EXPECT_EQ(u8"a" + String2(), u8"a");
    EXPECT_EQ(String2(u8"a") + u8"", u8"a");
    EXPECT_EQ(u8"" + String2(u8"a"), u8"a");
}

TEST(String2Concatenation, ReusesTheStorageOfTheOperandThatIsGivenUp) {
    String2 text = u8"0123456789";
    text = std::move(text) + u8"a"; // grows by half
    char8_t const* const bytes = text.data();
    text = std::move(text) + u8"b";
    EXPECT_EQ(text.data(), bytes);
    text = u8"c" + std::move(text);
    EXPECT_EQ(text.data(), bytes);
    EXPECT_EQ(text, u8"c0123456789ab");
    EXPECT_EQ(text.length(), 13U);
    EXPECT_EQ(text.data()[13], u8'\0');
}

TEST(String2Concatenation, LeavesTheOperandEmpty) {
    String2 left = u8"ab";
    String2 const joined = std::move(left) + u8"cd";
    EXPECT_EQ(joined, u8"abcd");
    EXPECT_EQ(left.length(), 0U);
}

TEST(String2Concatenation, ChainsAllocateOnlyNowAndThen) {
    String2 text;
    std::string reference;
    int changes = 0;
    for (int i = 0; i < 10000; ++i) {
        char8_t const* const before = text.data();
        text = i % 2 == 0 ? std::move(text) + u8"x" : u8"y" + std::move(text);
        reference = i % 2 == 0 ? reference + 'x' : 'y' + reference;
        changes += text.data() != before ? 1 : 0;
    }
    EXPECT_EQ(text.narrow(), reference);
    EXPECT_LT(changes, 40);
}

TEST(String2Concatenation, TextMayBePartOfTheOperand) {
    String2 text = u8"abcd";
    text = std::move(text) + text.data(); // grows to exactly what it needs
    EXPECT_EQ(text, u8"abcdabcd");
    text = text.data() + 6 + std::move(text); // grows by half and has room for two more bytes
    EXPECT_EQ(text, u8"cdabcdabcd");
    text = text.data() + 9 + std::move(text);
    EXPECT_EQ(text, u8"dcdabcdabcd");
    text = std::move(text) + (text.data() + 10);
    EXPECT_EQ(text, u8"dcdabcdabcdd");
    text = std::move(text) + (text.data() + text.length());
    EXPECT_EQ(text, u8"dcdabcdabcdd");
}

TEST(String2Concatenation, KeepsZeroBytesOfTheString) {
    EXPECT_EQ((checked("a\0b"sv) + u8"c").narrow(), "a\0bc"sv);
    EXPECT_EQ((u8"c" + checked("a\0b"sv)).narrow(), "ca\0b"sv);
}

TEST(ToString, WritesTheDecimalDigits) {
    using Limits = std::numeric_limits<int>;
    for (int const number :
         {0, 1, -1, 9, 10, 12, -12, 99, 100, Limits::max(), Limits::min(), Limits::min() + 1}) {
        EXPECT_EQ(toString(number).value().narrow(), std::to_string(number));
    }
    for (int power = 1; power < 1000000000; power *= 10) {
        for (int const number : {power - 1, power, power + 1, -power, 1 - power, -1 - power}) {
            EXPECT_EQ(toString(number).value().narrow(), std::to_string(number));
        }
    }
}

TEST(ToString, IgnoresTheLocale) {
    struct Grouped : std::numpunct<char> {
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    std::locale const former = std::locale::global(std::locale(std::locale::classic(), new Grouped));
    EXPECT_EQ(toString(1234567).value(), u8"1234567");
    std::locale::global(former);
}

/// Every well-formed sequence of one code point, each packed into a number, first byte highest. Made by
/// encoding, so it shares no idea with a decoder.
std::unordered_set<std::uint32_t> const& encodings() {
    static std::unordered_set<std::uint32_t> const all = [] {
        std::unordered_set<std::uint32_t> set;
        set.reserve(0x110000);
        for (std::uint32_t c = 0; c < 0x80; ++c) {
            set.insert(c);
        }
        for (std::uint32_t c = 0x80; c < 0x800; ++c) {
            set.insert((0xC0 + c / 64) * 256 + 0x80 + c % 64);
        }
        for (std::uint32_t c = 0x800; c < 0x10000; ++c) {
            if (c / 0x800 != 0xD800 / 0x800) {
                set.insert(((0xE0 + c / 4096) * 256 + 0x80 + c / 64 % 64) * 256 + 0x80 + c % 64);
            }
        }
        for (std::uint32_t c = 0x10000; c <= 0x10FFFF; ++c) {
            set.insert((((0xF0 + c / 262144) * 256 + 0x80 + c / 4096 % 64) * 256 + 0x80 + c / 64 % 64) * 256
                       + 0x80 + c % 64);
        }
        return set;
    }();
    return all;
}

/// Whether @p bytes can be cut into well-formed sequences; tries every cut. A one-byte sequence is below
/// 0x80, so numbers of different lengths can't be taken for each other.
bool isWellFormed(std::string_view bytes) {
    if (bytes.empty()) {
        return true;
    }
    std::uint32_t packed = 0;
    for (std::size_t length = 1; length <= 4 && length <= bytes.size(); ++length) {
        packed = packed * 256 + static_cast<unsigned char>(bytes[length - 1]);
        std::uint32_t const lowest[] = {0, 0, 0x100, 0x10000, 0x1000000};
        if (packed >= lowest[length] && encodings().contains(packed) && isWellFormed(bytes.substr(length))) {
            return true;
        }
    }
    return false;
}

/// Whether the library's verdict on @p bytes is the reference's, and its result right.
bool agrees(std::string_view bytes) {
    Expected<String2, ErrorCode2> const result = utf8ToUtf8(bytes.data(), bytes.size());
    if (isWellFormed(bytes)) {
        return result.has_value() && result->narrow() == bytes;
    }
    return !result.has_value() && result.error() == ErrorCode2(std::errc::illegal_byte_sequence);
}

std::string hexadecimal(std::string_view bytes) {
    std::ostringstream stream;
    for (char const byte : bytes) {
        stream << ' ' << std::hex << static_cast<int>(static_cast<unsigned char>(byte));
    }
    return stream.str();
}

/// Checks every sequence of @p length bytes out of @p choice.
void expectAgreementOnAll(std::string_view choice, std::size_t length) {
    std::string bytes(length, '\0');
    std::size_t number = 1;
    for (std::size_t i = 0; i < length; ++i) {
        number *= choice.size();
    }
    int failures = 0;
    for (std::size_t index = 0; index < number && failures < 5; ++index) {
        std::size_t rest = index;
        for (char& byte : bytes) {
            byte = choice[rest % choice.size()];
            rest /= choice.size();
        }
        if (!agrees(bytes)) {
            ADD_FAILURE() << hexadecimal(bytes);
            ++failures;
        }
    }
}

std::string everyByte() {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

/// The bytes beside which the rules change.
constexpr std::string_view boundaryBytes =
    "\x00\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC1\xC2\xDF\xE0\xE1\xEC\xED\xEE\xEF\xF0\xF1\xF3\xF4\xF5\xFF"sv;

TEST(Utf8ToUtf8, AgreesWithTheReferenceOnEveryByteAndEveryPair) {
    expectAgreementOnAll(everyByte(), 1);
    expectAgreementOnAll(everyByte(), 2);
}

TEST(Utf8ToUtf8, AgreesWithTheReferenceOnBoundaryTriplesAndQuadruples) {
    expectAgreementOnAll(boundaryBytes, 3);
    expectAgreementOnAll(boundaryBytes, 4);
}

TEST(Utf8ToUtf8, AcceptsEveryCodePoint) {
    std::size_t accepted = 0;
    for (std::uint32_t const packed : encodings()) {
        char bytes[4];
        std::size_t length = 0;
        for (int shift = 24; shift >= 0; shift -= 8) {
            if (packed >> shift != 0 || shift == 0) {
                bytes[length++] = static_cast<char>(packed >> shift & 0xFFU);
            }
        }
        Expected<String2, ErrorCode2> const result = utf8ToUtf8(bytes, length);
        accepted += result && result->narrow() == std::string_view(bytes, length) ? 1U : 0U;
    }
    EXPECT_EQ(accepted, 0x110000U - 0x800U);
}

TEST(Utf8ToUtf8, RejectsWhatEndsTooEarlyAndWhatIsBrokenInTheMiddle) {
    for (std::string_view const sequence : {"\xC3\xA9"sv, "\xE2\x82\xAC"sv, "\xF0\x9F\x98\x80"sv}) {
        for (std::size_t length = 1; length < sequence.size(); ++length) {
            std::string const cut = "ab" + std::string(sequence.substr(0, length));
            for (std::string const& bytes : {cut, cut + "c", cut + std::string(sequence)}) {
                Expected<String2, ErrorCode2> const result = utf8ToUtf8(bytes.data(), bytes.size());
                ASSERT_FALSE(result.has_value()) << hexadecimal(bytes);
                EXPECT_EQ(result.error(), ErrorCode2(std::errc::illegal_byte_sequence));
                EXPECT_EQ(&result.error().category(), &generic_error_category());
            }
        }
    }
}

TEST(Utf8ToUtf8, ReadsNoFurtherThanTheLength) {
    // The sequence would be complete if the byte behind the range were read.
    EXPECT_FALSE(utf8ToUtf8("\xC3\xA9", 1).has_value());
    EXPECT_EQ(utf8ToUtf8("abc", 2).value(), u8"ab");
}

TEST(Utf8ToUtf8, KeepsZeroBytes) {
    String2 const text = checked("a\0b\0"sv);
    EXPECT_EQ(text.length(), 4U);
    EXPECT_EQ(text.narrow(), "a\0b\0"sv);
    EXPECT_EQ(text.data()[4], u8'\0');
}

TEST(Utf8ToUtf8, NothingGivesTheEmptyString) {
    EXPECT_EQ(utf8ToUtf8(nullptr, 0).value(), u8"");
    EXPECT_EQ(utf8ToUtf8("abc", 0).value(), u8"");
}

} // namespace

} // namespace Tervane::System

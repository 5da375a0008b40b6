#include <System/String.h>

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <type_traits>
#include <utility>

namespace Tervane::System {

namespace {

static_assert(std::has_virtual_destructor_v<String>);
static_assert(std::is_nothrow_move_constructible_v<String> && std::is_nothrow_move_assignable_v<String>);

TEST(String, KeepsTheBytesItIsBuiltFrom) {
    String const text = u8"caf\u00e9";
    EXPECT_EQ(text.length(), 5U);
    EXPECT_EQ(std::memcmp(text.data(), "caf\xC3\xA9", 6), 0);
    EXPECT_EQ(text.narrow(), "caf\xC3\xA9");
}

TEST(String, EmptyTextHasATerminator) {
    EXPECT_EQ(String(u8"").length(), 0U);
    EXPECT_EQ(*String(u8"").data(), u8'\0');
    EXPECT_EQ(String(), String(u8""));
}

TEST(String, CopiesAreIndependent) {
    String const text = u8"text";
    String const copy(text);
    EXPECT_EQ(copy, text);
    EXPECT_NE(copy.data(), text.data());
    String assigned = u8"other";
    assigned = text;
    EXPECT_EQ(assigned, text);
    EXPECT_NE(assigned.data(), text.data());
}

TEST(String, MovesTakeTheStorageAndLeaveTheSourceEmpty) {
    String text = u8"text";
    char8_t const* const bytes = text.data();
    String moved(std::move(text));
    EXPECT_EQ(moved.data(), bytes);
    EXPECT_EQ(text, u8"");
    text = std::move(moved);
    EXPECT_EQ(text.data(), bytes);
    EXPECT_EQ(moved, u8"");
}

TEST(String, EqualWithTheSameBytes) {
    EXPECT_TRUE(String(u8"ab") == String(u8"ab"));
    EXPECT_FALSE(String(u8"ab") == String(u8"ac"));
    EXPECT_FALSE(String(u8"ab") == String(u8"abc"));
}

TEST(String, StreamsItsBytes) {
    std::ostringstream stream;
    stream << String(u8"caf\u00e9") << '!';
    EXPECT_EQ(stream.str(), "caf\xC3\xA9!");
}

} // namespace

} // namespace Tervane::System

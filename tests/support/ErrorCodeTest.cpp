#include <System/ErrorCode.h>

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace Tervane::System {

namespace {

static_assert(std::has_virtual_destructor_v<ErrorCode>);
static_assert(
    std::is_nothrow_move_constructible_v<ErrorCode> && std::is_nothrow_move_assignable_v<ErrorCode>);
static_assert(std::is_copy_constructible_v<ErrorCode> && std::is_copy_assignable_v<ErrorCode>);
static_assert(std::is_abstract_v<ErrorCategory> && std::has_virtual_destructor_v<ErrorCategory>);

class MetalCategory final : public ErrorCategory {
public:
    String message(int code) const override { return code == 2 ? u8"copper" : u8"iron"; }
    String name() const override { return u8"metal"; }
};

static_assert(!std::is_default_constructible_v<ErrorCategory>);

MetalCategory const metal;

void expectNoError(ErrorCode const& code) {
    EXPECT_FALSE(code.hasError());
    EXPECT_FALSE(code.isUnknown());
    EXPECT_EQ(code.code(), 0);
    EXPECT_EQ(code.category(), nullptr);
    EXPECT_EQ(code.message(), u8"");
}

void expectCopper(ErrorCode const& code) {
    EXPECT_TRUE(code.hasError());
    EXPECT_FALSE(code.isUnknown());
    EXPECT_EQ(code.code(), 2);
    EXPECT_EQ(code.category(), &metal);
    EXPECT_EQ(code.message(), u8"copper");
}

void expectUnknown(ErrorCode const& code) {
    EXPECT_TRUE(code.hasError());
    EXPECT_TRUE(code.isUnknown());
    EXPECT_EQ(code.code(), -1);
    EXPECT_EQ(code.category(), nullptr);
    EXPECT_EQ(code.message(), u8"unknown error");
}

void expectDescription(ErrorCode const& code, char8_t const* text) {
    EXPECT_TRUE(code.hasError());
    EXPECT_FALSE(code.isUnknown());
    EXPECT_EQ(code.code(), -1);
    EXPECT_EQ(code.category(), nullptr);
    EXPECT_EQ(code.message(), text);
}

ErrorCode described() {
    ErrorCode code;
    code.assign(std::runtime_error("burnt"));
    return code;
}

ErrorCode unknown() {
    ErrorCode code;
    code.assignUnknown();
    return code;
}

TEST(ErrorCode, DefaultIsNoError) {
    expectNoError(ErrorCode());
}

TEST(ErrorCode, BuiltWithAnyCodeIsAnError) {
    expectCopper(ErrorCode(2, metal));
    ErrorCode const zero(0, metal);
    EXPECT_TRUE(zero.hasError());
    EXPECT_FALSE(zero.isUnknown());
    EXPECT_EQ(zero.code(), 0);
    EXPECT_EQ(zero.category(), &metal);
    EXPECT_EQ(zero.message(), u8"iron");
    ErrorCode const minusOne(-1, metal);
    EXPECT_TRUE(minusOne.hasError());
    EXPECT_FALSE(minusOne.isUnknown());
    EXPECT_EQ(minusOne.category(), &metal);
}

TEST(ErrorCode, AssignUnknownForgetsCodeCategoryAndText) {
    expectUnknown(unknown());
    ErrorCode coded(2, metal);
    coded.assignUnknown();
    expectUnknown(coded);
    ErrorCode text = described();
    text.assignUnknown();
    expectUnknown(text);
}

TEST(ErrorCode, AssignOfAnExceptionKeepsItsText) {
    expectDescription(described(), u8"burnt");
    ErrorCode coded(2, metal);
    coded.assign(std::out_of_range("beyond"));
    expectDescription(coded, u8"beyond");
    ErrorCode memory = unknown();
    memory.assign(std::bad_alloc());
    expectDescription(memory, reinterpret_cast<char8_t const*>(std::bad_alloc().what()));
}

TEST(ErrorCode, AssignOfAnExceptionReplacesBytesThatAreNotUtf8) {
    ErrorCode code;
    code.assign(std::runtime_error("a\xE9z"));
    expectDescription(code, u8"a?z");
    code.assign(std::runtime_error("a\xC3\xA9z"));
    expectDescription(code, u8"a\u00e9z");
}

TEST(ErrorCode, AssignOfACodeCopiesItInEveryState) {
    ErrorCode target = described();
    target.assign(ErrorCode(2, metal));
    expectCopper(target);
    target.assign(unknown());
    expectUnknown(target);
    target.assign(described());
    expectDescription(target, u8"burnt");
    target.assign(target);
    expectDescription(target, u8"burnt");
    target.assign(ErrorCode());
    expectNoError(target);
}

TEST(ErrorCode, CopiesKeepTheirState) {
    ErrorCode const coded(2, metal);
    ErrorCode const text = described();
    ErrorCode copy(coded);
    expectCopper(copy);
    expectCopper(coded);
    copy = text;
    expectDescription(copy, u8"burnt");
    expectDescription(text, u8"burnt");
    copy = unknown();
    expectUnknown(copy);
    copy = ErrorCode();
    expectNoError(copy);
}

TEST(ErrorCode, MovesKeepTheirState) {
    ErrorCode coded(2, metal);
    ErrorCode text = described();
    expectCopper(ErrorCode(std::move(coded)));
    ErrorCode moved(std::move(text));
    expectDescription(moved, u8"burnt");
    ErrorCode assigned;
    assigned = std::move(moved);
    expectDescription(assigned, u8"burnt");
}

TEST(ErrorCode, MayBeReusedAfterAMove) {
    ErrorCode text = described();
    ErrorCode const moved(std::move(text));
    text.assign(ErrorCode(2, metal));
    expectCopper(text);
}

} // namespace

} // namespace Tervane::System

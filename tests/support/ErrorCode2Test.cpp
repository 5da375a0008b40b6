#include "TestCategory.h"

#include <System/ErrorCode2.h>
#include <System/String2.h>

#include <gtest/gtest.h>

#include <string>
#include <system_error>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tervane::System {

namespace {

using Testing::Fruit;
using Testing::fruit_category;

enum class Unregistered { Enumerator };

static_assert(std::is_convertible_v<Fruit, ErrorCode2>);
static_assert(std::is_convertible_v<std::errc, ErrorCode2>);
static_assert(std::is_convertible_v<std::io_errc, ErrorCode2>);
static_assert(std::is_convertible_v<std::future_errc, ErrorCode2>);
static_assert(!std::is_constructible_v<ErrorCode2, Unregistered>);
static_assert(!std::is_constructible_v<ErrorCode2, int>);
static_assert(
    std::is_nothrow_copy_constructible_v<ErrorCode2> && std::is_nothrow_copy_assignable_v<ErrorCode2>);
static_assert(
    std::is_nothrow_move_constructible_v<ErrorCode2> && std::is_nothrow_move_assignable_v<ErrorCode2>);
static_assert(sizeof(ErrorCode2) == 2 * sizeof(void*));

static_assert(ErrorCodeEnumeration<Fruit> && ErrorCodeEnumeration<std::errc>);
static_assert(!ErrorCodeEnumeration<Unregistered> && !ErrorCodeEnumeration<int>);

static_assert(std::is_abstract_v<ErrorCategory2> && std::has_virtual_destructor_v<ErrorCategory2>);
static_assert(!std::is_copy_constructible_v<
                  Testing::FruitCategory> && !std::is_copy_assignable_v<Testing::FruitCategory>);

TEST(ErrorCode2, KeepsItsNumberAndItsCategory) {
    for (int const number : {0, 1, -1, 2147483647, -2147483647 - 1}) {
        ErrorCode2 const code(number, fruit_category());
        EXPECT_EQ(code.code(), number);
        EXPECT_EQ(&code.category(), &fruit_category());
    }
}

TEST(ErrorCode2, MessageIsTheCategorys) {
    EXPECT_EQ(ErrorCode2(Fruit::Pear).message(), u8"pear \u00e9");
    EXPECT_EQ(ErrorCode2(Fruit::Apple).message(), u8"apple");
}

TEST(ErrorCode2, CopiesMovesAndAssigns) {
    ErrorCode2 const pear = Fruit::Pear;
    ErrorCode2 copied(pear);
    EXPECT_EQ(copied, pear);
    ErrorCode2 const moved(std::move(copied));
    EXPECT_EQ(moved, pear);
    ErrorCode2 assigned = std::errc::timed_out;
    assigned = pear;
    EXPECT_EQ(assigned, pear);
    assigned = ErrorCode2(std::errc::timed_out);
    EXPECT_EQ(assigned, ErrorCode2(std::errc::timed_out));
}

TEST(ErrorCode2, EqualWithTheSameNumberAndTheSameCategoryObject) {
    Testing::FruitCategory const twin;
    ErrorCode2 const pear = Fruit::Pear;
    EXPECT_TRUE(pear == ErrorCode2(7, fruit_category()));
    EXPECT_TRUE(pear == Fruit::Pear);
    EXPECT_FALSE(pear == ErrorCode2(8, fruit_category()));
    EXPECT_FALSE(pear == ErrorCode2(7, twin));
    EXPECT_TRUE(pear != ErrorCode2(7, twin));
}

TEST(ErrorCode2, StandardEnumeratorsGetTheirCategories) {
    ErrorCode2 const generic = std::errc::not_supported;
    EXPECT_EQ(generic.code(), static_cast<int>(std::errc::not_supported));
    EXPECT_EQ(&generic.category(), &generic_error_category());
    ErrorCode2 const stream = std::io_errc::stream;
    EXPECT_EQ(stream.code(), static_cast<int>(std::io_errc::stream));
    EXPECT_EQ(&stream.category(), &iostream_error_category());
    ErrorCode2 const future = std::future_errc::future_already_retrieved;
    EXPECT_EQ(future.code(), static_cast<int>(std::future_errc::future_already_retrieved));
    EXPECT_EQ(&future.category(), &future_error_category());

    EXPECT_EQ(ErrorCodeEnumConstructor<std::errc>()(std::errc::not_supported), generic);
    EXPECT_EQ(ErrorCodeEnumConstructor<std::io_errc>()(std::io_errc::stream), stream);
    EXPECT_EQ(ErrorCodeEnumConstructor<std::future_errc>()(std::future_errc::future_already_retrieved),
              future);
}

TEST(ErrorCode2, StandardCodesKeepTheirNumberAndGetTheCategoryOfTheSameName) {
    for (int const number : {0, 1, -7, 22, 100000}) {
        EXPECT_EQ(ErrorCode2::fromStandard(std::error_code(number, std::generic_category())),
                  ErrorCode2(number, generic_error_category()));
        EXPECT_EQ(ErrorCode2::fromStandard(std::error_code(number, std::system_category())),
                  ErrorCode2(number, system_error_category()));
        EXPECT_EQ(ErrorCode2::fromStandard(std::error_code(number, std::future_category())),
                  ErrorCode2(number, future_error_category()));
        EXPECT_EQ(ErrorCode2::fromStandard(std::error_code(number, std::iostream_category())),
                  ErrorCode2(number, iostream_error_category()));
    }
}

/// A category that claims to be equivalent to everything.
class AgreeableCategory final : public std::error_category {
public:
    char const* name() const noexcept override { return "system"; }
    std::string message(int) const override { return "yes"; }
    bool equivalent(int, std::error_condition const&) const noexcept override { return true; }
    bool equivalent(std::error_code const&, int) const noexcept override { return true; }
};

TEST(ErrorCode2, StandardCodesOfOtherCategoriesHaveNoCounterpart) {
    AgreeableCategory const foreign;
    EXPECT_EQ(ErrorCode2::fromStandard(std::error_code(5, foreign)), ErrorCode2(-1, system_error_category()));
    EXPECT_EQ(ErrorCode2::fromStandard(std::error_code(0, foreign)), ErrorCode2(-1, system_error_category()));
}

struct StandardCase {
    char const* name;
    ErrorCategory2 const& (*category)() noexcept;
    std::error_category const& (*standard)() noexcept;
};

class StandardCategories : public testing::TestWithParam<StandardCase> {};

TEST_P(StandardCategories, NameIsTheStandards) {
    EXPECT_STREQ(GetParam().category().name(), GetParam().name);
    EXPECT_STREQ(GetParam().category().name(), GetParam().standard().name());
}

TEST_P(StandardCategories, MessagesAreTheStandards) {
    for (int number = -3; number < 200; ++number) {
        EXPECT_EQ(GetParam().category().message(number).narrow(), GetParam().standard().message(number))
            << number;
    }
}

TEST_P(StandardCategories, EveryThreadGetsTheSameObject) {
    std::vector<ErrorCategory2 const*> seen(8);
    {
        std::vector<std::jthread> threads;
        for (ErrorCategory2 const*& place : seen) {
            threads.emplace_back([&place] { place = &GetParam().category(); });
        }
    }
    for (ErrorCategory2 const* const category : seen) {
        EXPECT_EQ(category, &GetParam().category());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Each, StandardCategories,
    testing::Values(StandardCase{"generic", generic_error_category, std::generic_category},
                    StandardCase{"system", system_error_category, std::system_category},
                    StandardCase{"future", future_error_category, std::future_category},
                    StandardCase{"iostream", iostream_error_category, std::iostream_category}),
    [](testing::TestParamInfo<StandardCase> const& parameter) { return std::string(parameter.param.name); });

TEST(StandardCategoryObjects, AreFourDifferentOnes) {
    ErrorCategory2 const* const objects[] = {&generic_error_category(), &system_error_category(),
                                             &future_error_category(), &iostream_error_category()};
    for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            EXPECT_NE(objects[i], objects[j]);
        }
    }
}

} // namespace

} // namespace Tervane::System

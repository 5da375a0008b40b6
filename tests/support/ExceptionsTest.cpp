#include "TestCategory.h"

#include <System/Exceptions.h>
#include <System/String2.h>

#include <gtest/gtest.h>

#include <cstring>
#include <exception>
#include <string>
#include <type_traits>
#include <utility>

namespace Tervane::System {

namespace {

using Testing::Fruit;

static_assert(std::is_base_of_v<std::exception, Exception2>);
static_assert(std::is_base_of_v<Exception2, RuntimeError>);
static_assert(std::is_base_of_v<RuntimeError, SystemError>);
static_assert(std::is_base_of_v<std::exception, bad_expected_access<void>>);
static_assert(std::is_base_of_v<bad_expected_access<void>, bad_expected_access<ErrorCode2>>);

// The layouts: the base, then the message, then the code.
static_assert(sizeof(Exception2) == sizeof(std::exception) + sizeof(std::string));
static_assert(sizeof(RuntimeError) == sizeof(Exception2));
static_assert(sizeof(SystemError) == sizeof(RuntimeError) + sizeof(ErrorCode2));
static_assert(sizeof(bad_expected_access<ErrorCode2>) == sizeof(std::exception) + sizeof(ErrorCode2));

ErrorCode2 const pear = Fruit::Pear;

TEST(StringIntermediary, TellsCategoryNumberAndMessage) {
    detail::StringIntermediary const text(pear);
    EXPECT_EQ(std::string(text.data(), text.length()), "fruit 7: pear \xC3\xA9");
    EXPECT_EQ(text.length(), 16U);
}

TEST(StringIntermediary, ContainsTheMessageOfEveryKindOfCode) {
    for (ErrorCode2 const& code : {pear, ErrorCode2(Fruit::Apple), ErrorCode2(std::errc::timed_out),
                                   ErrorCode2(-1, system_error_category())}) {
        detail::StringIntermediary const text(code);
        EXPECT_NE(std::string(text.data(), text.length()).find(code.message().narrow()), std::string::npos);
    }
}

TEST(Exception2, KeepsItsMessage) {
    EXPECT_STREQ(Exception2("text").what(), "text");
    EXPECT_STREQ(RuntimeError("text").what(), "text");
    EXPECT_STREQ(Exception2("").what(), "");
    std::string const longText(1000, 'x');
    EXPECT_EQ(Exception2(longText).what(), longText);
}

TEST(Exception2, CopiesKeepTheMessage) {
    RuntimeError const original("some text that is too long for the short form");
    RuntimeError const copy(original);
    EXPECT_STREQ(copy.what(), original.what());
    EXPECT_NE(copy.what(), original.what());
    RuntimeError assigned("other");
    assigned = copy;
    EXPECT_STREQ(assigned.what(), original.what());
    RuntimeError const moved(std::move(assigned));
    EXPECT_STREQ(moved.what(), original.what());
}

TEST(SystemError, CarriesTheCodeAndItsText) {
    SystemError const error(pear);
    EXPECT_EQ(error.code(), pear);
    detail::StringIntermediary const text(pear);
    EXPECT_EQ(std::string(error.what()), std::string(text.data(), text.length()));
}

TEST(SystemError, IsBuiltFromAnEnumerator) {
    EXPECT_EQ(SystemError(Fruit::Pear).code(), pear);
    EXPECT_EQ(SystemError(std::errc::timed_out).code(), ErrorCode2(std::errc::timed_out));
}

TEST(SystemError, CopiesKeepCodeAndText) {
    SystemError const original(pear);
    SystemError const copy(original);
    EXPECT_EQ(copy.code(), pear);
    EXPECT_STREQ(copy.what(), original.what());
    SystemError assigned(std::errc::timed_out);
    assigned = copy;
    EXPECT_EQ(assigned.code(), pear);
    EXPECT_STREQ(assigned.what(), original.what());
    SystemError const moved(std::move(assigned));
    EXPECT_EQ(moved.code(), pear);
    EXPECT_STREQ(moved.what(), original.what());
}

/// Whether @p thrown is caught as a `Base`, with its own text.
template<class Base, class Thrown>
bool isCaughtAs(Thrown const& thrown) {
    try {
        throw thrown;
    } catch (Base const& exception) {
        return std::strcmp(exception.what(), thrown.what()) == 0;
    } catch (...) {
        return false;
    }
}

TEST(SystemError, IsCaughtAsEachOfItsBases) {
    SystemError const error(pear);
    EXPECT_TRUE(isCaughtAs<SystemError>(error));
    EXPECT_TRUE(isCaughtAs<RuntimeError>(error));
    EXPECT_TRUE(isCaughtAs<Exception2>(error));
    EXPECT_TRUE(isCaughtAs<std::exception>(error));
    EXPECT_FALSE(isCaughtAs<std::runtime_error>(error));
}

TEST(BadExpectedAccess, SaysSo) {
    EXPECT_STREQ(bad_expected_access<void>().what(), "bad expected access");
    EXPECT_STREQ(bad_expected_access<ErrorCode2>(pear).what(), "bad expected access");
}

TEST(BadExpectedAccess, IsCaughtAsEachOfItsBases) {
    bad_expected_access<ErrorCode2> const access(pear);
    EXPECT_TRUE(isCaughtAs<bad_expected_access<ErrorCode2>>(access));
    EXPECT_TRUE(isCaughtAs<bad_expected_access<void>>(access));
    EXPECT_TRUE(isCaughtAs<std::exception>(access));
    EXPECT_FALSE(isCaughtAs<Exception2>(access));
}

TEST(BadExpectedAccess, EveryFormRefersToItsOwnError) {
    ErrorCode2 error = pear;
    bad_expected_access<ErrorCode2> access(error);
    bad_expected_access<ErrorCode2> const& constant = access;
    error = Fruit::Apple;
    EXPECT_EQ(access.error(), pear);
    ErrorCode2&& rvalue = std::move(access).error();
    ErrorCode2 const&& constantRvalue = std::move(constant).error();
    EXPECT_EQ(&rvalue, &access.error());
    EXPECT_EQ(&constantRvalue, &access.error());
    EXPECT_EQ(&constant.error(), &access.error());
    bad_expected_access<ErrorCode2> const copy(access);
    EXPECT_EQ(copy.error(), pear);
}

} // namespace

} // namespace Tervane::System

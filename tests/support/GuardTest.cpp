#include "TestCategory.h"
#include "Tracked.h"

#include <System/Exceptions.h>
#include <System/Guard.h>

#include <gtest/gtest.h>

#include <exception>
#include <future>
#include <ios>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

namespace Tervane::System {

namespace {

using Testing::Fruit;
using Testing::Tracked;
using Testing::TrackedCounts;

ErrorCode2 const pear = Fruit::Pear;
ErrorCode2 const apple = Fruit::Apple;

ErrorCode2 unclassified() {
    return {-1, system_error_category()};
}

/// The error that guarding a body which throws @p thrown gives.
template<class Thrown>
ErrorCode2 errorFor(Thrown const& thrown) {
    Expected<int, ErrorCode2> const result = guard<int>([&]() -> int { throw thrown; });
    EXPECT_FALSE(result.has_value());
    Expected<void, ErrorCode2> const voidResult = guard<void>([&] { throw thrown; });
    EXPECT_FALSE(voidResult.has_value());
    if (result.has_value() || voidResult.has_value()) {
        return apple;
    }
    EXPECT_EQ(result.error(), voidResult.error());
    return result.error();
}

TEST(Guard, ReturnsTheValueOfTheBodyWithoutACopy) {
    Tracked::reset();
    Expected<Tracked, ErrorCode2> const result = guard<Tracked>([] { return Tracked(3); });
    EXPECT_TRUE(result.has_value());
    EXPECT_EQ(result->id(), 3);
    EXPECT_EQ(Tracked::counts.copies, 0);
    EXPECT_EQ(Tracked::counts.moves, 1);
}

TEST(Guard, PassesOnTheResultOfTheBody) {
    Tracked::reset();
    auto const value = guard<Tracked>([]() -> Expected<Tracked, ErrorCode2> { return Tracked(3); });
    EXPECT_TRUE(value.has_value());
    EXPECT_EQ(value->id(), 3);
    EXPECT_EQ(Tracked::counts.copies, 0);
    auto const error = guard<Tracked>([]() -> Expected<Tracked, ErrorCode2> { return Fruit::Pear; });
    EXPECT_FALSE(error.has_value());
    EXPECT_EQ(error.error(), pear);
}

TEST(Guard, VoidBodyThatReturnsSucceeds) {
    bool ran = false;
    EXPECT_TRUE(guard<void>([&] { ran = true; }).has_value());
    EXPECT_TRUE(ran);
}

TEST(Guard, VoidBodyMayReturnAResult) {
    EXPECT_TRUE(guard<void>([] { return Expected<void, ErrorCode2>(); }).has_value());
    auto const error = guard<void>([]() -> Expected<void, ErrorCode2> { return Fruit::Pear; });
    EXPECT_FALSE(error.has_value());
    EXPECT_EQ(error.error(), pear);
}

TEST(Guard, PointerBodyReturnsThePointer) {
    int number = 0;
    auto const result = guard<int*>([&] { return &number; });
    EXPECT_EQ(*result, &number);
}

TEST(Guard, BodyIsCalledAsWhatItIs) {
    struct Body {
        int operator()() & { return 1; }
        int operator()() && { return 2; }
    } body;
    EXPECT_EQ(*guard<int>(body), 1);
    EXPECT_EQ(*guard<int>(std::move(body)), 2);
}

TEST(Guard, NeverThrows) {
    static_assert(noexcept(guard<int>([]() -> int { throw 1; })));
    static_assert(noexcept(guard<void>([] { throw 1; })));
}

TEST(Guard, CopyOfTheReturnedValueIsGuardedToo) {
    Tracked const value(3);
    Tracked::reset();
    Tracked::copyThrows = true;
    auto const result = guard<Tracked>([&]() -> Tracked const& { return value; });
    Tracked::copyThrows = false;
    EXPECT_FALSE(result.has_value());
    EXPECT_EQ(result.error(), unclassified());
}

TEST(Guard, ThrownStandardEnumeratorsAreTheirOwnCodes) {
    EXPECT_EQ(errorFor(std::errc::no_such_process),
              ErrorCode2(static_cast<int>(std::errc::no_such_process), generic_error_category()));
    EXPECT_EQ(errorFor(std::io_errc::stream),
              ErrorCode2(static_cast<int>(std::io_errc::stream), iostream_error_category()));
    EXPECT_EQ(errorFor(std::future_errc::broken_promise),
              ErrorCode2(static_cast<int>(std::future_errc::broken_promise), future_error_category()));
}

TEST(Guard, SystemErrorOfTheStandardGivesItsCode) {
    EXPECT_EQ(errorFor(std::system_error(5, std::generic_category())),
              ErrorCode2(5, generic_error_category()));
    EXPECT_EQ(errorFor(std::system_error(6, std::system_category())), ErrorCode2(6, system_error_category()));
    EXPECT_EQ(errorFor(std::system_error(7, std::future_category())), ErrorCode2(7, future_error_category()));
    EXPECT_EQ(errorFor(std::system_error(8, std::iostream_category())),
              ErrorCode2(8, iostream_error_category()));
}

TEST(Guard, SystemErrorOfAForeignCategoryIsUnclassified) {
    struct Foreign : std::error_category {
        char const* name() const noexcept override { return "generic"; }
        std::string message(int) const override { return "foreign"; }
    } const foreign;
    EXPECT_EQ(errorFor(std::system_error(5, foreign)), unclassified());
}

TEST(Guard, DerivedSystemErrorCountsAsOne) {
    struct Derived : std::system_error {
        Derived() : std::system_error(9, std::generic_category()) {}
    };
    EXPECT_EQ(errorFor(Derived()), ErrorCode2(9, generic_error_category()));
    EXPECT_EQ(errorFor(std::ios_base::failure("stream")), ErrorCode2(std::io_errc::stream));
}

// The standard's future_error carries an error code but is no system_error.
TEST(Guard, FutureErrorIsUnclassified) {
    EXPECT_EQ(errorFor(std::future_error(std::future_errc::no_state)), unclassified());
}

TEST(Guard, OwnSystemErrorGivesItsCode) {
    struct Derived : SystemError {
        using SystemError::SystemError;
    };
    EXPECT_EQ(errorFor(SystemError(pear)), pear);
    EXPECT_EQ(errorFor(Derived(pear)), pear);
}

TEST(Guard, OwnSystemErrorWithANestedExceptionGivesItsCode) {
    auto const result = guard<int>([]() -> int {
        try {
            throw std::errc::invalid_argument;
        } catch (...) {
            std::throw_with_nested(SystemError(Fruit::Pear));
        }
    });
    EXPECT_FALSE(result.has_value());
    EXPECT_EQ(result.error(), pear);
}

TEST(Guard, UncheckedValueGivesTheErrorOfItsResult) {
    struct Derived : bad_expected_access<ErrorCode2> {
        using bad_expected_access<ErrorCode2>::bad_expected_access;
    };
    EXPECT_EQ(errorFor(bad_expected_access<ErrorCode2>(pear)), pear);
    EXPECT_EQ(errorFor(Derived(pear)), pear);
    Expected<int, ErrorCode2> const inner = Fruit::Pear;
    EXPECT_EQ(guard<int>([&] { return inner.value(); }).error(), pear);
}

TEST(Guard, AnythingElseIsUnclassified) {
    EXPECT_EQ(errorFor(std::bad_alloc()), unclassified());
    EXPECT_EQ(errorFor(std::length_error("vector too long")), unclassified());
    EXPECT_EQ(errorFor(Exception2("text")), unclassified());
    EXPECT_EQ(errorFor(RuntimeError("text")), unclassified());
    EXPECT_EQ(errorFor(bad_expected_access<void>()), unclassified());
    EXPECT_EQ(errorFor(42), unclassified());
    EXPECT_EQ(errorFor("text"), unclassified());
    EXPECT_EQ(errorFor(Fruit::Pear), unclassified());
    EXPECT_EQ(errorFor(std::make_error_code(std::errc::invalid_argument)), unclassified());
}

TEST(Guard, ExceptionOfSeveralKindsCountsAsTheFirst) {
    struct BothSystemErrors : SystemError, std::system_error {
        BothSystemErrors() : SystemError(pear), std::system_error(9, std::generic_category()) {}
    };
    struct SystemErrorAndAccess : bad_expected_access<ErrorCode2>, SystemError {
        SystemErrorAndAccess() : bad_expected_access<ErrorCode2>(apple), SystemError(pear) {}
    };
    struct StandardAndAccess : bad_expected_access<ErrorCode2>, std::system_error {
        StandardAndAccess()
            : bad_expected_access<ErrorCode2>(apple), std::system_error(9, std::generic_category()) {}
    };
    EXPECT_EQ(errorFor(BothSystemErrors()), ErrorCode2(9, generic_error_category()));
    EXPECT_EQ(errorFor(SystemErrorAndAccess()), pear);
    EXPECT_EQ(errorFor(StandardAndAccess()), ErrorCode2(9, generic_error_category()));
}

TEST(Guard, LeavesAnExceptionThatIsBeingHandledCurrent) {
    bool rethrown = false;
    try {
        try {
            throw SystemError(apple);
        } catch (...) {
            EXPECT_EQ(guard<int>([]() -> int { throw SystemError(pear); }).error(), pear);
            throw;
        }
    } catch (SystemError const& exception) {
        rethrown = true;
        EXPECT_EQ(exception.code(), apple);
    }
    EXPECT_TRUE(rethrown);
}

TEST(Guard, MayBeNested) {
    auto const result = guard<int>([] {
        auto inner = guard<int>([]() -> int { throw SystemError(Fruit::Pear); });
        return std::move(inner).value();
    });
    EXPECT_EQ(result.error(), pear);
}

} // namespace

} // namespace Tervane::System

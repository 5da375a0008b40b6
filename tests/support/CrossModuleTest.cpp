#include "ThrowingModule.h"

#include <System/Exceptions.h>
#include <System/Guard.h>

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <exception>

namespace Tervane::System {

namespace {

using Testing::Thrown;

/// Loads the module so that none of its symbols are merged with the program's.
class CrossModule : public testing::Test {
protected:
    void SetUp() override {
        _module = dlopen(TVNCORE_THROWING_MODULE, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(_module, nullptr) << dlerror();
    }

    template<class Function>
    Function* find(char const* name) {
        void* const symbol = dlsym(_module, name);
        EXPECT_NE(symbol, nullptr) << name;
        return reinterpret_cast<Function*>(symbol);
    }

    /// Whether what the module throws is caught here as a `Caught`.
    template<class Caught>
    bool isCaughtAs(Thrown what) {
        try {
            find<void(Thrown)>("throwFromModule")(what);
        } catch (Caught const&) {
            return true;
        } catch (...) {
        }
        return false;
    }

    /// The error that the library makes of what the module throws.
    ErrorCode2 errorFor(Thrown what) {
        auto* const thrower = find<void(Thrown)>("throwFromModule");
        Expected<void, ErrorCode2> const result = guard<void>([&] { thrower(what); });
        EXPECT_FALSE(result.has_value());
        return result ? ErrorCode2(0, system_error_category()) : result.error();
    }

private:
    void* _module = nullptr;
};

TEST_F(CrossModule, ExceptionsOfTheModuleAreCaughtByType) {
    EXPECT_TRUE(isCaughtAs<std::errc>(Thrown::Errc));
    EXPECT_TRUE(isCaughtAs<Exception2>(Thrown::Exception2));
    EXPECT_TRUE(isCaughtAs<RuntimeError>(Thrown::RuntimeError));
    EXPECT_TRUE(isCaughtAs<Exception2>(Thrown::RuntimeError));
    EXPECT_TRUE(isCaughtAs<SystemError>(Thrown::SystemError));
    EXPECT_TRUE(isCaughtAs<RuntimeError>(Thrown::SystemError));
    EXPECT_TRUE(isCaughtAs<std::exception>(Thrown::SystemError));
    EXPECT_TRUE(isCaughtAs<bad_expected_access<void>>(Thrown::BadExpectedAccessVoid));
    EXPECT_FALSE(isCaughtAs<bad_expected_access<ErrorCode2>>(Thrown::BadExpectedAccessVoid));
    EXPECT_TRUE(isCaughtAs<bad_expected_access<ErrorCode2>>(Thrown::BadExpectedAccess));
    EXPECT_TRUE(isCaughtAs<bad_expected_access<void>>(Thrown::BadExpectedAccess));
    EXPECT_TRUE(isCaughtAs<bad_expected_access<ErrorCode2>>(Thrown::ValueOfAnError));
}

TEST_F(CrossModule, ExceptionsOfTheModuleAreClassifiedInTheLibrary) {
    ErrorCode2 const timedOut = std::errc::timed_out;
    ErrorCode2 const unclassified(-1, system_error_category());
    EXPECT_EQ(errorFor(Thrown::Errc), timedOut);
    EXPECT_EQ(errorFor(Thrown::IoErrc), ErrorCode2(std::io_errc::stream));
    EXPECT_EQ(errorFor(Thrown::FutureErrc), ErrorCode2(std::future_errc::no_state));
    EXPECT_EQ(errorFor(Thrown::StandardSystemError), timedOut);
    EXPECT_EQ(errorFor(Thrown::SystemError), timedOut);
    EXPECT_EQ(errorFor(Thrown::BadExpectedAccess), timedOut);
    EXPECT_EQ(errorFor(Thrown::ValueOfAnError), timedOut);
    EXPECT_EQ(errorFor(Thrown::Exception2), unclassified);
    EXPECT_EQ(errorFor(Thrown::RuntimeError), unclassified);
    EXPECT_EQ(errorFor(Thrown::BadExpectedAccessVoid), unclassified);
}

// The library throws it here, from within `value()`, which it alone contains.
TEST_F(CrossModule, ExceptionOfTheLibraryIsCaughtByTypeInTheProgram) {
    Expected<void, ErrorCode2> const result = std::errc::timed_out;
    EXPECT_THROW(result.value(), bad_expected_access<ErrorCode2>);
    EXPECT_THROW(result.value(), bad_expected_access<void>);
}

TEST_F(CrossModule, ObjectsOfTheModuleAreCastByType) {
    UniquePointer<ObjectData> const object(find<ObjectData*()>("objectOfModule")());
    auto const* const category = dynamic_cast<ErrorCategory2 const*>(object.get());
    ASSERT_NE(category, nullptr);
    EXPECT_STREQ(category->name(), "module");
    EXPECT_EQ(category->message(0), u8"module");
    EXPECT_EQ(dynamic_cast<std::exception const*>(object.get()), nullptr);
}

} // namespace

} // namespace Tervane::System

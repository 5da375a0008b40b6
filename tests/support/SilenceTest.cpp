#include "TestCategory.h"
#include "kit/StreamCapture.h"

#include <System/System.h>

#include <gtest/gtest.h>

#include <stdexcept>

namespace Tervane::System {

namespace {

using Testing::Fruit;

/// Goes through every way in which a failure is made, passed on and put into words.
void failInEveryWay() {
    (void)guard<void>([] { throw SystemError(Fruit::Pear); });
    (void)guard<void>([] { throw std::runtime_error("text"); });
    (void)guard<void>([] { throw 1; });
    (void)guard<int>([] { return Expected<int, ErrorCode2>(Fruit::Pear).value(); });
    (void)utf8ToUtf8("\xFF", 1);
    (void)toString(12);
    for (ErrorCode2 const& code :
         {ErrorCode2(Fruit::Pear), ErrorCode2(std::errc::timed_out), ErrorCode2(std::io_errc::stream),
          ErrorCode2(std::future_errc::no_state)}) {
        (void)code.message();
    }
    ErrorCode code;
    code.assign(std::runtime_error("a\xE9z"));
    (void)code.message();
    code.assignUnknown();
    (void)code.message();
}

TEST(SupportLibrary, WritesNothingToTheStandardStreams) {
    Math::TestKit::StreamCapture capture;
    failInEveryWay();
    EXPECT_EQ(capture.finish(), "");
}

} // namespace

} // namespace Tervane::System

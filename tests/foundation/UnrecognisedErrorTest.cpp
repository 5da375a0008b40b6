#include "foundation/UnrecognisedError.h"

#include <gtest/gtest.h>

#include <system_error>

namespace Tervane::Math::Detail {

namespace {

TEST(UnrecognisedError, ShowsTheNumber) {
    EXPECT_EQ(unrecognisedErrorText(System::toString(-12)).narrow(), "Unrecognised error (-12)");
}

TEST(UnrecognisedError, ShowsAQuestionMarkWhenTheNumberCannotBeRendered) {
    EXPECT_EQ(unrecognisedErrorText(System::ErrorCode2(std::errc::not_enough_memory)).narrow(),
              "Unrecognised error (?)");
}

} // namespace

} // namespace Tervane::Math::Detail

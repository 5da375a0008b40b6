#include <Math/Version.h>

#include <gtest/gtest.h>

#include <string>

namespace Tervane::Math {
namespace {

// The build system reads the version from the header; what it read comes back here.
TEST(Version, HeaderAndBuildSystemAgree) {
    EXPECT_EQ(std::string(TVNMATH_VERSION_STRING), TVNMATH_PROJECT_VERSION);
}

TEST(Version, LibraryTellsTheVersionThatItWasBuiltAs) {
    EXPECT_EQ(std::string(version()), TVNMATH_PROJECT_VERSION);
}

TEST(Version, NumberOrdersAsTheVersionsDo) {
    std::string const text = std::to_string(TVNMATH_VERSION / 10000) + "."
                             + std::to_string(TVNMATH_VERSION / 100 % 100) + "."
                             + std::to_string(TVNMATH_VERSION % 100);
    EXPECT_EQ(text, TVNMATH_PROJECT_VERSION);
#if TVNMATH_VERSION < TVNMATH_VERSION_MAJOR * 10000 || TVNMATH_VERSION >= (TVNMATH_VERSION_MAJOR + 1) * 10000
    FAIL() << "the preprocessor orders the version differently";
#endif
}

} // namespace
} // namespace Tervane::Math

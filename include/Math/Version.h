#pragma once

/// @file
/// The library's version: of the headers that a program is compiled with, and of the library that it runs
/// with.
///
/// @code
/// #if TVNMATH_VERSION < 10000
/// #    error "this program needs TVNMath 1.0"
/// #endif
/// std::cout << "compiled with " << TVNMATH_VERSION_STRING << '\n';
/// std::cout << "running with " << Tervane::Math::version() << '\n';
/// @endcode
///
/// The version of the whole project stands here and nowhere else: the build system reads these lines.

#include <Math/Export.h>

/// Changes when the binary interface does.
#define TVNMATH_VERSION_MAJOR 1
/// Changes when something is added.
#define TVNMATH_VERSION_MINOR 0
/// Changes when something is mended.
#define TVNMATH_VERSION_PATCH 0

/// The headers' version as one number that can be compared: 10203 is version 1.2.3.
#define TVNMATH_VERSION (TVNMATH_VERSION_MAJOR * 10000 + TVNMATH_VERSION_MINOR * 100 + TVNMATH_VERSION_PATCH)

#define TVNMATH_DETAIL_TEXT_OF(number) #number
#define TVNMATH_DETAIL_VERSION_TEXT(major, minor, patch)                                                     \
    TVNMATH_DETAIL_TEXT_OF(major) "." TVNMATH_DETAIL_TEXT_OF(minor) "." TVNMATH_DETAIL_TEXT_OF(patch)

/// The headers' version as text, "1.2.3".
#define TVNMATH_VERSION_STRING                                                                               \
    TVNMATH_DETAIL_VERSION_TEXT(TVNMATH_VERSION_MAJOR, TVNMATH_VERSION_MINOR, TVNMATH_VERSION_PATCH)

namespace Tervane::Math {

/// The version of the library that the program runs with, "1.2.3". It may be later than that of the headers
/// which the program was compiled with: `TVNMATH_VERSION_STRING` is theirs.
///
/// @return a zero-terminated text that lives as long as the library. Safe from any thread.
TVNMATH_API char const* version() noexcept;

} // namespace Tervane::Math

#pragma once

/// @file
/// TVNMATH_API marks what libTVNMath.so exports. The library is built with hidden visibility, so an entity
/// without this mark is private to it; TVNMATH_LOCAL takes a member of an exported class out again.

#include <System/Export.h>

/// @def TVNMATH_API
/// Offers a declaration to other modules.
/// @def TVNMATH_LOCAL
/// Keeps a member of an offered class inside the library.

#if defined(__GNUC__)
#    define TVNMATH_API __attribute__((visibility("default")))
#    define TVNMATH_LOCAL __attribute__((visibility("hidden")))
#else
#    define TVNMATH_API
#    define TVNMATH_LOCAL
#endif

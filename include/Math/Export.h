#pragma once

/// @file
/// TVNMATH_API marks what libTVNMath.so exports. The library is built with hidden visibility, so an entity
/// without this mark is private to it; TVNMATH_LOCAL takes a member of an exported class out again.

#include <System/Export.h>

#if defined(__GNUC__)
#    define TVNMATH_API __attribute__((visibility("default")))
#    define TVNMATH_LOCAL __attribute__((visibility("hidden")))
#else
#    define TVNMATH_API
#    define TVNMATH_LOCAL
#endif

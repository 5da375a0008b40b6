#pragma once

/// @file
/// Marks what libTVNMath.so exports. The library is built with hidden visibility, so an entity without this
/// mark is private to it.

#if defined(__GNUC__)
#    define TVNMATH_API __attribute__((visibility("default")))
#else
#    define TVNMATH_API
#endif

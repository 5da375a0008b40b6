#pragma once

/// @file
/// The standard vector, which a few functions of the legacy family take and return. Not an interface for
/// callers.
///
/// The standard library's debug mode gives it another layout. A caller compiled so and a library compiled
/// otherwise would crash at the first such function, so they are kept apart here.

#include <vector>

#if defined(_GLIBCXX_DEBUG) && !defined(TVNMATH_BUILT_WITH_GLIBCXX_DEBUG)
#    error                                                                                                   \
        "TVNMath was built without _GLIBCXX_DEBUG, under which std::vector differs: compile without it too."
#endif

#pragma once

/// @file
/// `TVNCORE_API` marks what the support library offers to other modules.
///
/// The library is compiled with hidden visibility, so a declaration without this mark stays inside it.
/// Classes that are thrown or cast across modules bear the mark too: their type information then exists once
/// per process.
/// `TVNCORE_LOCAL` takes it from a private member of a marked class.
///
/// Every header of both libraries comes by here first, so what they need of the compiler is checked here.

#if __cplusplus < 202002L
#    error "TVNMath needs C++20: compile with -std=c++20 or later."
// A compiler goes on after an error, and would hide this one behind dozens. Where a file is missing it stops.
#    include <C++20>
#endif

#include <cstddef>

// Exceptions hold a std::string, which has another layout under the old setting.
#if defined(__GLIBCXX__) && !_GLIBCXX_USE_CXX11_ABI
#    error "TVNMath needs the current std::string: compile without _GLIBCXX_USE_CXX11_ABI=0."
#endif

/// @def TVNCORE_API
/// Offers a declaration to other modules.
/// @def TVNCORE_LOCAL
/// Keeps a member of an offered class inside the library.

#if defined(__GNUC__)
#    define TVNCORE_API __attribute__((visibility("default")))
#    define TVNCORE_LOCAL __attribute__((visibility("hidden")))
#else
#    define TVNCORE_API
#    define TVNCORE_LOCAL
#endif

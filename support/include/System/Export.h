#pragma once

/// @file
/// `TVNCORE_API` marks what the support library offers to other modules.
///
/// The library is compiled with hidden visibility, so a declaration without this mark stays inside it.
/// Classes that are thrown or cast across modules bear the mark too: their type information then exists once
/// per process.
/// `TVNCORE_LOCAL` takes it from a private member of a marked class.

#if defined(__GNUC__)
#    define TVNCORE_API __attribute__((visibility("default")))
#    define TVNCORE_LOCAL __attribute__((visibility("hidden")))
#else
#    define TVNCORE_API
#    define TVNCORE_LOCAL
#endif

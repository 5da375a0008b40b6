#pragma once

/// @file
/// Error codes of the current generation, those of the standard library's streams and futures included.
///
/// `Detail/ErrorCode2.h` declares the types. The containers' headers include that one: the standard headers
/// that name the enumerations below are two thirds of what this one takes to compile.

#include <System/Detail/ErrorCode2.h>
#include <System/Export.h>

#include <future>
#include <ios>

namespace Tervane::System {

/// Enumerators of `std::io_errc` are codes of the iostream category.
template<>
struct TVNCORE_API ErrorCodeEnumConstructor<std::io_errc> {
    /// The code of @p enumerator in iostream_error_category().
    ErrorCode2 operator()(std::io_errc enumerator) const noexcept;
};

/// Enumerators of `std::future_errc` are codes of the future category.
template<>
struct TVNCORE_API ErrorCodeEnumConstructor<std::future_errc> {
    /// The code of @p enumerator in future_error_category().
    ErrorCode2 operator()(std::future_errc enumerator) const noexcept;
};

} // namespace Tervane::System

#pragma once

/// @file
/// Division rounded toward minus infinity.
///
/// @code
/// double const periods = Tervane::Math::floordiv(-7.0, 2.0);    // -4
/// @endcode

#include <Math/Export.h>

#include <cstddef>

namespace Tervane::Math {

/// @name Floor division
/// @{

/// floor(a / b), computed in double; a length is converted first. Nothing is checked: a division by zero
/// gives an infinity or a NaN. Any other integer type for `a` is ambiguous.
TVNMATH_API double floordiv(double const& a, double const& b);
TVNMATH_API double floordiv(std::size_t a, double const& b);
/// @}

} // namespace Tervane::Math

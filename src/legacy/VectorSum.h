#pragma once

#include <Math/Vector.h>

/// @name Sum and difference of two named vectors
/// A copy of `a` with `b` added or subtracted. For the library's own sources: no public header declares
/// these, callers copy one operand themselves.
/// @{
Tervane::Math::Vector operator+(Tervane::Math::Vector const& a, Tervane::Math::Vector const& b);
Tervane::Math::Vector operator-(Tervane::Math::Vector const& a, Tervane::Math::Vector const& b);
/// @}

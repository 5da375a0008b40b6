#pragma once

#include <cstddef>

namespace Tervane::Math::Detail::Kernels {

/// Puts the elements in ascending order. Equal ones may change places; NaNs go anywhere, but stay in the
/// range.
void sort(double* values, std::size_t n);

} // namespace Tervane::Math::Detail::Kernels

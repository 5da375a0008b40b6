#pragma once

#include <cstddef>

namespace Tervane::Math::Detail::Kernels {

/// Puts the elements in ascending order, NaNs last. Equal ones may change places.
void sort(double* values, std::size_t n);

} // namespace Tervane::Math::Detail::Kernels

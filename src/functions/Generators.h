#pragma once

#include <cstddef>

namespace Tervane::Math::Detail {

/// The number of integers from `start` to before `stop`. Their distance is a 32-bit number that wraps.
std::size_t arangeLength(int start, int stop) noexcept;

namespace Kernels {

/// out[i] = start + i
void arange(int start, double* out, std::size_t n) noexcept;

/// `n` points from `start` to `stop`, each the one before it plus the step, and the last one `stop` itself. A
/// single point is `stop`.
void linspace(double start, double stop, double* out, std::size_t n) noexcept;

} // namespace Kernels

} // namespace Tervane::Math::Detail

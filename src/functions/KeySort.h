#pragma once

#include <cstddef>
#include <cstdint>

namespace Tervane::Math::Detail {

/// Whether the machine has an instruction set for sortKeys().
bool canSortKeys() noexcept;

/// Puts integers into ascending order by Highway's quick sort on vectors, which allocates nothing. Many times
/// faster than the standard sort from some hundred keys on.
///
/// @pre canSortKeys()
void sortKeys(std::int64_t* keys, std::size_t n) noexcept;

} // namespace Tervane::Math::Detail

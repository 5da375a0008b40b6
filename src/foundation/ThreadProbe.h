#pragma once

#include <cstddef>

namespace Tervane::Math::Detail {

/// Whether so many threads can be had at the same time, beside those that there are. Starts and ends them.
///
/// The runtimes behind the library print, end the process or throw where nobody can catch it when a thread is
/// refused to them. So they are asked for threads only after this was.
///
/// @param stackBytes the size of each one's stack, 0 for the system's choice
bool threadsCanBeHad(std::size_t count, std::size_t stackBytes) noexcept;

} // namespace Tervane::Math::Detail

#pragma once

/// @file
/// The threads of this process.

#include <cstddef>
#include <filesystem>
#include <iterator>

namespace Tervane::Math::TestKit {

/// How many there are, the calling one included.
inline std::size_t threadsOfThisProcess() {
    std::filesystem::directory_iterator const tasks("/proc/self/task");
    return static_cast<std::size_t>(std::distance(begin(tasks), end(tasks)));
}

} // namespace Tervane::Math::TestKit

// In the place of the sort on vector instructions: a machine that has none.
#include "functions/KeySort.h"

#include <cstdlib>

namespace Tervane::Math::Detail {

bool canSortKeys() noexcept {
    return false;
}

void sortKeys(std::int64_t* /*keys*/, std::size_t /*n*/) noexcept {
    std::abort();
}

} // namespace Tervane::Math::Detail

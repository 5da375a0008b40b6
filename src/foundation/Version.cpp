#include <Math/Version.h>

namespace Tervane::Math {

char const* version() noexcept {
    return TVNMATH_VERSION_STRING;
}

} // namespace Tervane::Math

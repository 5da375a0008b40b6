// A number does not turn into a vector of that length unasked.
#include <Math/Vector2.h>

Tervane::Math::Vector2 make() {
#ifdef WRONG
    return std::size_t{3};
#else
    return Tervane::Math::Vector2(3);
#endif
}

// A std::size_t divides a vector and does nothing else with it.
#include <Math/Vector2.h>

Tervane::Math::Vector2 scaled(Tervane::Math::Vector2 const& v) {
#ifdef WRONG
    return v * std::size_t{3};
#else
    return v / std::size_t{3};
#endif
}

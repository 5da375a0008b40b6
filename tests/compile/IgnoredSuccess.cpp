// Ignoring whether an operation without a value succeeded is a warning too.
#include <Math/Vector2.h>

void grow(Tervane::Math::Vector2& v) {
#ifdef WRONG
    v.resize(10);
#else
    v.resize(10).value();
#endif
}

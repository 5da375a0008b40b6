// size() is not callable on a constant vector; rows() is.
#include <Math/Vector2.h>

std::size_t rowsOf(Tervane::Math::Vector2 const& v) {
#ifdef WRONG
    return v.size().rows();
#else
    return v.rows();
#endif
}

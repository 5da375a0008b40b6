// The global operators are found in the global namespace only. A caller's operator of the same sign hides
// them in its namespace, and a caller's global template that would take anything is not found there either.
template<class T>
T operator+(T const& a, T const&) {
    return a;
}

#include <Math/ComplexVector.h>
#include <Math/Vector.h>

#include <utility>

namespace Caller {

struct Own {};

Own operator+(Own, Own);

Tervane::Math::Vector sum(Tervane::Math::Vector const& a, Tervane::Math::Vector const& b) {
#ifdef WRONG
    return a + b;
#else
    return ::operator+(Tervane::Math::Vector(a), b);
#endif
}

} // namespace Caller

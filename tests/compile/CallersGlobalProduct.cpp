// A caller may declare a global operator of its own between two of the library's headers, in the place of one
// that Tervane::Math has. Named by a qualified name it is the caller's; without, it is ambiguous.
#include <Math/Vector.h>

Tervane::Math::Vector operator*(Tervane::Math::Vector const& a, Tervane::Math::Vector const& b);

#include <Math/ComplexVector.h>
#include <Math/Math.h>

Tervane::Math::Vector product(Tervane::Math::Vector const& a, Tervane::Math::Vector const& b) {
#ifdef WRONG
    return a * b;
#else
    return ::operator*(a, b);
#endif
}

#include <Math/FloorDivision.h>

#include <cmath>

namespace Tervane::Math {

double floordiv(double const& a, double const& b) {
    return std::floor(a / b);
}

double floordiv(std::size_t a, double const& b) {
    return floordiv(static_cast<double>(a), b);
}

} // namespace Tervane::Math

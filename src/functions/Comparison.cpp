#include "legacy/Access.h"

#include <Math/Vector.h>

#include <functional>

namespace Tervane::Math {

namespace {

template<class Comparison>
std::vector<bool> compared(Detail::RealArray const& elements, double t, Comparison holds) {
    std::vector<bool> result(elements.length());
    auto flag = result.begin();
    for (double const x : elements)
        *flag++ = holds(x, t);
    return result;
}

} // namespace

std::vector<bool> Vector::operator<(double const& t) {
    return compared(Detail::LegacyAccess::elements(*this), t, std::less<>());
}

std::vector<bool> Vector::operator>(double const& t) {
    return compared(Detail::LegacyAccess::elements(*this), t, std::greater<>());
}

} // namespace Tervane::Math

#include "functions/ScalarFunctions.h"

#include <cmath>

namespace Tervane::Math::Detail {

// noipa: not inlined, and not copied for an exponent that all callers in sight have in common.
#if defined(__clang__)
[[gnu::noinline]]
#else
[[gnu::noipa]]
#endif
double
power(double x, double exponent) {
    return std::pow(x, exponent);
}

} // namespace Tervane::Math::Detail

#include "functions/Generators.h"

#include "containers/Access.h"
#include "foundation/Multiversion.h"

#include <Math/Generators.h>

#include <algorithm>
#include <cstdint>

namespace Tervane::Math {

namespace {

TVNMATH_MULTIVERSION void countUp(int start, double* out, std::size_t n) noexcept {
    for (std::size_t i = 0; i < n; ++i) {
        auto const wrapped = static_cast<std::uint32_t>(start) + static_cast<std::uint32_t>(i);
        out[i] = static_cast<double>(static_cast<std::int32_t>(wrapped));
    }
}

} // namespace

std::size_t Detail::arangeLength(int start, int stop) noexcept {
    auto const distance =
        static_cast<std::int32_t>(static_cast<std::uint32_t>(stop) - static_cast<std::uint32_t>(start));
    return distance > 0 ? static_cast<std::size_t>(distance) : 0;
}

void Detail::Kernels::arange(int start, double* out, std::size_t n) noexcept {
    countUp(start, out, n);
}

// The order of the first two writes decides what a single point is.
void Detail::Kernels::linspace(double start, double stop, double* out, std::size_t n) noexcept {
    if (n == 0)
        return;
    out[0] = start;
    out[n - 1] = stop;
    double const step = (stop - start) / static_cast<double>(std::max<std::size_t>(n - 1, 1));
    double value = start;
    for (std::size_t i = 1; i < n - 1; ++i) {
        value += step;
        out[i] = value;
    }
}

Vector2 zeros(std::size_t n) {
    return Vector2(n);
}

Vector zeros_old(std::size_t n) {
    return Vector(n, 0.0);
}

Vector2 arange(int stop) {
    return arange(0, stop);
}

Vector2 arange(int start, int stop) {
    Vector2 result = Detail::ContainerAccess::uninitialised(Detail::arangeLength(start, stop), Column);
    Detail::Kernels::arange(start, result.data(), result.length());
    return result;
}

Vector2 linspace(double const& start, double const& stop, std::size_t n) {
    Vector2 result = Detail::ContainerAccess::uninitialised(n, Column);
    Detail::Kernels::linspace(start, stop, result.data(), n);
    return result;
}

} // namespace Tervane::Math

#include "containers/Access.h"
#include "signal/UniformDraws.h"

#include <Math/Random.h>

#include <random>

namespace Tervane::Math {

namespace {

Detail::UniformDraws freshDraws() {
    return Detail::UniformDraws(std::random_device()());
}

} // namespace

Vector2 Random::uniform(double const& lo, double const& hi, std::size_t n) {
    Vector2 result = Detail::ContainerAccess::uninitialised(n, Column);
    if (n != 0)
        freshDraws().draw(lo, hi, result.data(), n);
    return result;
}

Matrix2 Random::uniform(double const& lo, double const& hi, std::size_t rows, std::size_t columns) {
    Matrix2 result(rows, columns, 0.0);
    if (rows != 0 && columns != 0)
        freshDraws().drawRowByRow(lo, hi, result.data(), rows, columns);
    return result;
}

} // namespace Tervane::Math

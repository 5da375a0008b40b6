#pragma once

#include <Math/Vector2.h>

#include <cstddef>
#include <random>

namespace Tervane::Math::Bench {

/// `n` uniformly distributed numbers, the same in every run.
inline Vector2 uniformNumbers(std::size_t n, double lo, double hi, unsigned seed = 1) {
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> distribution(lo, hi);
    Vector2 numbers(n);
    for (std::size_t i = 0; i < n; ++i)
        numbers[i] = distribution(generator);
    return numbers;
}

} // namespace Tervane::Math::Bench

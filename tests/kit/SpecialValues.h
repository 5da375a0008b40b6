#pragma once

/// @file
/// The values that every kernel is tested with.

#include "kit/Bits.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace Tervane::Math::TestKit {

/// Zeros, denormals, the edges of the range, infinities and quiet NaNs, of both signs; some ordinary numbers
/// between.
inline std::vector<double> specialValues() {
    using Limits = std::numeric_limits<double>;
    std::vector<double> const positive = {
        0.0,
        Limits::denorm_min(),
        fromBits(0x000fffffffffffff), // the largest denormal
        Limits::min(),
        Limits::epsilon(),
        0.1,
        0.5,
        0x1.fffffffffffffp-1, // just below 1
        1.0,
        0x1.0000000000001p+0, // just above 1
        1.5,
        3.0,
        0x1p52 + 0.5,
        0x1p53,
        1e100,
        1e154,
        1e308,
        Limits::max(),
        Limits::infinity(),
        Limits::quiet_NaN(),
        fromBits(0x7ff8000000000abc), // a NaN with a payload
    };
    std::vector<double> values;
    for (double const x : positive) {
        values.push_back(x);
        values.push_back(fromBits(bitsOf(x) | 0x8000000000000000));
    }
    return values;
}

/// `n` numbers of both signs whose bit patterns are spread evenly from the smallest denormal to the largest
/// number, so that small and huge values are covered alike.
inline std::vector<double> valuesByBitPattern(std::size_t n) {
    constexpr std::uint64_t last = 0x7fefffffffffffff;
    std::vector<double> values(n);
    std::uint64_t const stride = n > 1 ? last / (n - 1) : 0;
    for (std::size_t i = 0; i < n; ++i) {
        std::uint64_t const sign = i % 2 == 0 ? 0 : 0x8000000000000000;
        values[i] = fromBits((1 + stride * i > last ? last : 1 + stride * i) | sign);
    }
    return values;
}

/// `n` values that walk through specialValues() from the `offset`-th on, again and again.
inline std::vector<double> specialValues(std::size_t n, std::size_t offset = 0) {
    std::vector<double> const all = specialValues();
    std::vector<double> values(n);
    for (std::size_t i = 0; i < n; ++i)
        values[i] = all[(i + offset) % all.size()];
    return values;
}

/// `n` distinct ordinary numbers of both signs, all different for different seeds.
inline std::vector<double> ordinaryValues(std::size_t n, unsigned seed = 1) {
    std::vector<double> values(n);
    std::uint64_t state = 0x9e3779b97f4a7c15 * (seed + 1ULL);
    for (double& x : values) {
        state = state * 6364136223846793005 + 1442695040888963407;
        x = (static_cast<double>(state >> 11) * 0x1p-53 - 0.5) * 16.0;
    }
    return values;
}

} // namespace Tervane::Math::TestKit

#pragma once

/// @file
/// Comparison to the last bit: tells 0.0 from -0.0 and one NaN from another.

#include <gtest/gtest.h>

#include <cstdint>
#include <span>
#include <string>

namespace Tervane::Math::TestKit {

/// A double as a number, in hexadecimal and as its bits.
std::string describe(double x);

/// The double whose representation is `bits`.
double fromBits(std::uint64_t bits);

std::uint64_t bitsOf(double x);

/// Success when both have the same representation.
testing::AssertionResult sameBits(double actual, double expected);

/// Success when both have the same length and the same representation at every place. Names the first that
/// differs.
testing::AssertionResult sameBits(std::span<double const> actual, std::span<double const> expected);

/// The elements of anything with data() and length(): a container or a view of either generation.
template<class Container>
std::span<double const> elementsOf(Container const& container) {
    return {container.data(), container.length()};
}

/// The interleaved parts of a complex container or view.
template<class Container>
std::span<double const> partsOf(Container const& container) {
    return {container.data(), 2 * container.length()};
}

} // namespace Tervane::Math::TestKit

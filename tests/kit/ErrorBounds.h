#pragma once

/// @file
/// Comparison within an error bound. A NaN on either side is a failure, whatever the bound is: a test that
/// expects one says so with isNaN().

#include <gtest/gtest.h>

#include <span>

namespace Tervane::Math::TestKit {

/// Half the distance from 1.0 to the next double: the largest relative error of one correctly rounded
/// operation.
inline constexpr double unitRoundoff = 0x1p-53;

/// Success when |actual - expected| <= bound; infinities must be equal.
testing::AssertionResult within(double bound, double actual, double expected);

/// The same for every element, with one bound. The lengths must agree.
testing::AssertionResult within(double bound, std::span<double const> actual,
                                std::span<double const> expected);

/// The same with a bound for each element.
testing::AssertionResult within(std::span<double const> bounds, std::span<double const> actual,
                                std::span<double const> expected);

/// Success when at most `ulps` doubles lie between the two.
testing::AssertionResult withinUlps(unsigned long long ulps, double actual, double expected);

/// Success for a NaN.
testing::AssertionResult isNaN(double actual);

} // namespace Tervane::Math::TestKit

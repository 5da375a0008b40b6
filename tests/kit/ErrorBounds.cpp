#include "kit/ErrorBounds.h"

#include "kit/Bits.h"

#include <cmath>
#include <vector>

namespace Tervane::Math::TestKit {

namespace {

/// Doubles as integers in their own order, so that neighbours differ by one.
std::int64_t rank(double x) {
    auto const bits = static_cast<std::int64_t>(bitsOf(x));
    return bits < 0 ? std::int64_t{-0x7fffffffffffffff} - 1 - bits : bits;
}

} // namespace

testing::AssertionResult within(double bound, double actual, double expected) {
    // Written so that a NaN anywhere, in the bound too, fails.
    if (actual == expected || std::abs(actual - expected) <= bound)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "got " << describe(actual) << ", expected " << describe(expected)
                                       << ", off by " << std::abs(actual - expected) << ", allowed " << bound;
}

testing::AssertionResult within(double bound, std::span<double const> actual,
                                std::span<double const> expected) {
    return within(std::vector<double>(expected.size(), bound), actual, expected);
}

testing::AssertionResult within(std::span<double const> bounds, std::span<double const> actual,
                                std::span<double const> expected) {
    if (actual.size() != expected.size() || bounds.size() != expected.size())
        return testing::AssertionFailure()
               << "got " << actual.size() << " elements, expected " << expected.size();
    for (std::size_t i = 0; i < actual.size(); ++i)
        if (auto const close = within(bounds[i], actual[i], expected[i]); !close)
            return testing::AssertionFailure() << "element " << i << ": " << close.message();
    return testing::AssertionSuccess();
}

testing::AssertionResult withinUlps(unsigned long long ulps, double actual, double expected) {
    if (std::isnan(actual) || std::isnan(expected))
        return testing::AssertionFailure()
               << "got " << describe(actual) << ", expected " << describe(expected);
    auto const distance =
        static_cast<unsigned long long>(rank(actual)) - static_cast<unsigned long long>(rank(expected));
    if (distance <= ulps || -distance <= ulps)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "got " << describe(actual) << ", expected " << describe(expected)
                                       << " within " << ulps << " ulps";
}

testing::AssertionResult isNaN(double actual) {
    if (std::isnan(actual))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "got " << describe(actual) << ", expected a NaN";
}

} // namespace Tervane::Math::TestKit

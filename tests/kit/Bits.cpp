#include "kit/Bits.h"

#include <bit>
#include <cstdio>

namespace Tervane::Math::TestKit {

std::string describe(double x) {
    char text[96];
    std::snprintf(text, sizeof text, "%.17g (%a, 0x%016llx)", x, x,
                  static_cast<unsigned long long>(bitsOf(x)));
    return text;
}

double fromBits(std::uint64_t bits) {
    return std::bit_cast<double>(bits);
}

std::uint64_t bitsOf(double x) {
    return std::bit_cast<std::uint64_t>(x);
}

testing::AssertionResult sameBits(double actual, double expected) {
    if (bitsOf(actual) == bitsOf(expected))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "got " << describe(actual) << ", expected " << describe(expected);
}

testing::AssertionResult sameBits(std::span<double const> actual, std::span<double const> expected) {
    if (actual.size() != expected.size())
        return testing::AssertionFailure()
               << "got " << actual.size() << " elements, expected " << expected.size();
    for (std::size_t i = 0; i < actual.size(); ++i)
        if (auto const same = sameBits(actual[i], expected[i]); !same)
            return testing::AssertionFailure() << "element " << i << ": " << same.message();
    return testing::AssertionSuccess();
}

} // namespace Tervane::Math::TestKit

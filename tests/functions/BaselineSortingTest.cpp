// The sort where the machine has no vector instructions for it, beside a stand-in that says so.
#include "functions/Sorting.h"
#include "kit/Bits.h"
#include "kit/SpecialValues.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace Tervane::Math {

namespace {

using namespace TestKit;

std::vector<double> byBits(std::vector<double> values) {
    std::sort(values.begin(), values.end(), [](double a, double b) { return bitsOf(a) < bitsOf(b); });
    return values;
}

} // namespace

TEST(BaselineSorting, SortsAnyLengthAndKeepsEveryElement) {
    for (std::size_t const n : {0U, 1U, 16U, 63U, 64U, 65U, 1000U, 20'000U})
        for (bool const withNaNs : {false, true}) {
            std::vector<double> const input = withNaNs ? specialValues(n) : ordinaryValues(n);
            std::vector<double> sorted = input;
            Detail::Kernels::sort(sorted.data(), n);
            EXPECT_TRUE(sameBits(byBits(sorted), byBits(input))) << n;
            auto const isNumber = [](double x) {
                return !std::isnan(x);
            };
            auto const numbersEnd = std::find_if_not(sorted.begin(), sorted.end(), isNumber);
            EXPECT_TRUE(std::is_sorted(sorted.begin(), numbersEnd)) << n;
            EXPECT_TRUE(std::none_of(numbersEnd, sorted.end(), isNumber)) << n;
        }
}

} // namespace Tervane::Math

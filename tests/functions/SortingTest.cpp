#include "functions/Generations.h"
#include "kit/Allocations.h"
#include "kit/Bits.h"
#include "kit/Lengths.h"
#include "kit/Policies.h"
#include "kit/SpecialValues.h"

#include <Math/Sorting.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <numeric>
#include <utility>
#include <vector>

namespace Tervane::Math {

namespace {

using namespace TestKit;

/// Inputs on which sorting algorithms differ, all without NaNs.
std::vector<std::vector<double>> inputsOf(std::size_t n) {
    std::vector<double> random = ordinaryValues(n);
    std::vector<double> ascending = random;
    std::sort(ascending.begin(), ascending.end());
    std::vector<double> descending(ascending.rbegin(), ascending.rend());
    std::vector<double> few(n);
    for (std::size_t i = 0; i < n; ++i)
        few[i] = std::floor(random[i] / 4.0);
    std::vector<double> special = specialValues(n);
    std::replace_if(
        special.begin(), special.end(), [](double x) { return std::isnan(x); }, 2.0);
    return {random, ascending, descending, few, special, std::vector(n, 1.0)};
}

/// The elements in the order of their bits, which shows that the same ones are there.
std::vector<double> asMultiset(std::span<double const> elements) {
    std::vector<double> values(elements.begin(), elements.end());
    std::sort(values.begin(), values.end(), [](double a, double b) { return bitsOf(a) < bitsOf(b); });
    return values;
}

} // namespace

TEST(Sorting, BothGenerationsSortAscendingAndKeepEveryElement) {
    for (std::size_t const n : awkwardLengthsAround(5000))
        for (std::vector<double> const& input : inputsOf(n)) {
            Vector2 const x(input.data(), n);
            Vector2 const fresh = sort(x);
            Vector2 const taken = sort(Vector2(x));
            Vector legacy(input.data(), n);
            legacy.sort();
            EXPECT_TRUE(std::is_sorted(fresh.data(), fresh.data() + n));
            EXPECT_TRUE(sameBits(asMultiset(elementsOf(fresh)), asMultiset(input)));
            EXPECT_TRUE(sameBits(elementsOf(taken), elementsOf(fresh)));
            EXPECT_TRUE(sameBits(elementsOf(legacy), elementsOf(fresh)));
            EXPECT_TRUE(sameBits(elementsOf(x), input)) << "the argument has changed";
        }
}

TEST(Sorting, TheOrientationIsKept) {
    double const values[] = {3.0, 1.0, 2.0};
    Vector2 const x(VectorView2(values, 3, Row));
    Vector2 sorted = sort(x);
    EXPECT_EQ(sorted.orientation(), Row);
    EXPECT_TRUE(sameBits(elementsOf(sorted), std::vector{1.0, 2.0, 3.0}));
    EXPECT_EQ(sort(Vector2(values, 3)).orientation(), Column);
}

TEST(Sorting, AnRvalueLendsItsStorage) {
    std::vector<double> const values = ordinaryValues(1000);
    Vector2 x(values.data(), values.size());
    double const* const storage = x.data();
    AllocationCounter const counter;
    Vector2 const sorted = sort(std::move(x));
    EXPECT_EQ(counter.count(), 0U);
    EXPECT_EQ(sorted.data(), storage);
    EXPECT_EQ(x.length(), 0U);
}

TEST(Sorting, TheLegacyMemberReturnsItsVector) {
    Vector x{3.0, 1.0, 2.0};
    EXPECT_EQ(&x.sort(), &x);
    EXPECT_TRUE(sameBits(elementsOf(x), std::vector{1.0, 2.0, 3.0}));
}

TEST(Sorting, NaNsCostNoElementAndTheRestIsInOrder) {
    for (std::size_t const n : awkwardLengthsAround(1000)) {
        std::vector<double> input = ordinaryValues(n);
        for (std::size_t i = 0; i < n; i += 3)
            input[i] = fromBits(0x7ff8000000000000 + i);
        Vector2 const sorted = sort(Vector2(input.data(), n));
        EXPECT_TRUE(sameBits(asMultiset(elementsOf(sorted)), asMultiset(input)));
        std::vector<double> numbers;
        std::copy_if(sorted.data(), sorted.data() + n, std::back_inserter(numbers),
                     [](double x) { return !std::isnan(x); });
        EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
    }
}

TEST(Sorting, ASingleNaNComesLastFromWhereverItStood) {
    double const nan = std::numeric_limits<double>::quiet_NaN();
    for (std::ptrdiff_t numbers = 0; numbers <= 40; ++numbers) {
        std::vector<double> expected(static_cast<std::size_t>(numbers));
        std::iota(expected.begin(), expected.end(), 1.0);
        std::vector<double> const falling(expected.rbegin(), expected.rend());
        expected.push_back(nan);
        for (std::ptrdiff_t place = 0; place <= numbers; ++place) {
            std::vector<double> input = falling;
            input.insert(input.begin() + place, nan);
            Vector legacy(input.data(), input.size());
            EXPECT_TRUE(sameBits(elementsOf(legacy.sort()), expected)) << place << " of " << numbers;
            Vector2 const sorted = sort(Vector2(input.data(), input.size()));
            EXPECT_TRUE(sameBits(elementsOf(sorted), expected)) << place << " of " << numbers;
        }
    }
}

TEST(Sorting, EveryBitPatternComesBackOnceAndNaNsComeLast) {
    std::vector<double> patterns = specialValues(200);
    std::uint64_t const extremes[] = {0x7ff0000000000001, 0x7fffffffffffffff, 0xfff0000000000001,
                                      0xfff8000000000000, 0xffffffffffffffff, 0x8000000000000000,
                                      0x0000000000000000, 0x0000000000000001, 0x8000000000000001,
                                      0x7fefffffffffffff, 0xffefffffffffffff};
    for (std::uint64_t const bits : extremes)
        for (int copies = 0; copies < 3; ++copies)
            patterns.push_back(fromBits(bits));
    std::vector<std::size_t> lengths(130);
    std::iota(lengths.begin(), lengths.end(), 1U);
    lengths.insert(lengths.end(), {1000U, 16385U, 100'000U});
    for (std::size_t const n : lengths) {
        std::vector<double> input(n);
        for (std::size_t i = 0; i < n; ++i)
            input[i] = i % 3 == 0 ? fromBits(i * 0x9e3779b97f4a7c15) : patterns[i * 7919 % patterns.size()];
        Vector2 const sorted = sort(Vector2(input.data(), n));
        EXPECT_TRUE(sameBits(asMultiset(elementsOf(sorted)), asMultiset(input))) << n;
        auto const isNumber = [](double x) {
            return !std::isnan(x);
        };
        double const* const end = sorted.data() + n;
        double const* const numbersEnd = std::find_if_not(sorted.data(), end, isNumber);
        EXPECT_TRUE(std::is_sorted(sorted.data(), numbersEnd)) << n;
        EXPECT_TRUE(std::none_of(numbersEnd, end, isNumber)) << n;
        Vector legacy(input.data(), n);
        legacy.sort();
        EXPECT_TRUE(sameBits(elementsOf(legacy), elementsOf(sorted))) << n;
    }
}

TEST(Sorting, LongVectorsAllocateNothing) {
    std::vector<double> const values = ordinaryValues(50'000);
    Vector2 x(values.data(), values.size());
    FailingAllocations const failing(0);
    Vector2 const sorted = sort(std::move(x));
    EXPECT_TRUE(std::is_sorted(sorted.data(), sorted.data() + sorted.length()));
}

} // namespace Tervane::Math

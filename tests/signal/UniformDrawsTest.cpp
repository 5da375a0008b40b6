#include "signal/UniformDraws.h"

#include "kit/Bits.h"
#include "kit/Lengths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace Tervane::Math::Detail {

namespace {

using namespace TestKit;

/// The first `n` values of a stream, one at a time from the standard generator.
std::vector<double> reference(std::uint32_t seed, double lo, double hi, std::size_t n) {
    std::mt19937 generator(seed);
    std::vector<double> values(n);
    for (double& value : values) {
        auto const x1 = static_cast<double>(generator());
        auto const x2 = static_cast<double>(generator());
        double const u = (x1 + x2 * 4294967296.0) / 18446744073709551616.0;
        value = (hi - lo) * u + lo;
    }
    return values;
}

std::vector<std::uint32_t> const seeds = {0, 1, 5489, 0x7fffffff, 0x80000000, 0xffffffff, 123456789};

} // namespace

TEST(UniformDraws, TheStreamIsThatOfTheStandardGenerator) {
    for (std::uint32_t const seed : seeds)
        for (std::size_t const n : awkwardLengthsAround(UniformDraws::blockLength / 2))
            for (std::size_t const misalignment : {0U, 1U, 3U}) {
                SCOPED_TRACE("seed " + std::to_string(seed) + ", " + std::to_string(n) + " values");
                Poisoned values(n, misalignment);
                UniformDraws(seed).draw(-2.5, 3.25, values.data(), n);
                EXPECT_TRUE(sameBits(values.elements(), reference(seed, -2.5, 3.25, n)));
                EXPECT_TRUE(values.guardsAreIntact());
            }
}

TEST(UniformDraws, TheStreamGoesOnFromDrawToDraw) {
    std::vector<double> const expected = reference(42, 0.0, 1.0, 5000);
    for (std::size_t const step : {1U, 7U, 311U, 312U, 313U, 1000U}) {
        std::vector<double> values(expected.size());
        UniformDraws draws(42);
        for (std::size_t i = 0; i < values.size(); i += step)
            draws.draw(0.0, 1.0, values.data() + i, std::min<std::size_t>(step, values.size() - i));
        EXPECT_TRUE(sameBits(values, expected)) << "in steps of " << step;
    }
}

TEST(UniformDraws, EveryRangeIsTheSameFormula) {
    double const infinity = std::numeric_limits<double>::infinity();
    double const largest = std::numeric_limits<double>::max();
    for (auto const& [lo, hi] :
         {std::pair{0.0, 1.0}, std::pair{-1e-300, 1e-300}, std::pair{5.0, -5.0}, std::pair{3.0, 3.0},
          std::pair{-largest, largest}, std::pair{0.0, infinity}, std::pair{-0.0, 0.0}}) {
        std::vector<double> values(700);
        UniformDraws(7).draw(lo, hi, values.data(), values.size());
        EXPECT_TRUE(sameBits(values, reference(7, lo, hi, values.size()))) << lo << " to " << hi;
    }
}

TEST(UniformDraws, AMatrixIsFilledRowByRow) {
    for (auto const& [rows, columns] : {std::pair<std::size_t, std::size_t>{2, 3},
                                        {1, 1},
                                        {1, 1000},
                                        {1000, 1},
                                        {7, 311},
                                        {313, 5},
                                        {40, 40},
                                        {0, 4},
                                        {4, 0}}) {
        SCOPED_TRACE(std::to_string(rows) + " by " + std::to_string(columns));
        std::vector<double> const inOrder = reference(11, -1.0, 1.0, rows * columns);
        std::vector<double> expected(rows * columns);
        for (std::size_t r = 0; r < rows; ++r)
            for (std::size_t c = 0; c < columns; ++c)
                expected[r + c * rows] = inOrder[r * columns + c];
        Poisoned values(rows * columns);
        UniformDraws(11).drawRowByRow(-1.0, 1.0, values.data(), rows, columns);
        EXPECT_TRUE(sameBits(values.elements(), expected));
        EXPECT_TRUE(values.guardsAreIntact());
    }
}

TEST(UniformDraws, TheFirstOutputOfAPairIsTheLowHalf) {
    std::uint32_t const outputs[] = {1, 0, 0, 1, 0x80000000, 0, 0, 0x80000000};
    double values[4];
    Kernels::uniformValues(outputs, 0.0, 1.0, values, 4);
    EXPECT_TRUE(sameBits(values, std::vector{0x1p-64, 0x1p-32, 0x1p-33, 0x1p-1}));
}

TEST(UniformDraws, TheUpperEndIsReachedByRoundingAndNotClamped) {
    // Enough pairs for the vectorised part of the loop and for the rest.
    std::vector<std::uint32_t> const outputs(2 * 19, 0xffffffff);
    std::vector<double> values(19);
    Kernels::uniformValues(outputs.data(), -1.0, 3.0, values.data(), values.size());
    EXPECT_TRUE(sameBits(values, std::vector(19, 2.0)));
}

} // namespace Tervane::Math::Detail

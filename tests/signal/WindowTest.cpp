#include "kit/Bits.h"
#include "kit/ErrorBounds.h"
#include "kit/Policies.h"

#include <Math/Window.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <iterator>
#include <stdexcept>
#include <vector>

namespace Tervane::Math::SignalProcessing::Window {

namespace {

using namespace TestKit;

// Through pointers that the compiler cannot see behind, so that it does not make a product of a power.
double (*const volatile cosine)(double) = std::cos;
double (*const volatile power)(double, double) = std::pow;

constexpr double twoPi = 6.283185307179586;

std::vector<double> referenceHann(int N) {
    std::vector<double> w;
    for (int k = 0; k < N; ++k) {
        double const angle = twoPi * static_cast<double>(k);
        double const difference = 1.0 - cosine(angle / static_cast<double>(N - 1));
        w.push_back(0.5 * difference);
    }
    return w;
}

std::vector<double> referenceHamming(int N) {
    std::vector<double> w;
    for (int k = 0; k < N; ++k) {
        double const angle = twoPi * static_cast<double>(k);
        double const scaled = 0.46 * cosine(angle / static_cast<double>(N - 1));
        w.push_back(0.54 - scaled);
    }
    return w;
}

std::vector<double> referenceBlackman(int N) {
    auto const n = static_cast<std::size_t>(N);
    std::vector<double> w(n);
    for (std::size_t k = 0; k < (n + 1) / 2; ++k) {
        double const c = cosine(static_cast<double>(k) * twoPi / static_cast<double>(N - 1));
        double second = power(c, 2.0) * 2.0;
        second = second - 1.0;
        second = second * 0.08;
        double const first = 0.42 - c * 0.5;
        w[k] = first + second;
        w[n - 1 - k] = w[k];
    }
    return w;
}

/// Lengths in which a window has no closed special form, the parallel limit among them.
std::vector<int> const lengths = {2, 3, 4, 5, 7, 8, 9, 16, 17, 100, 1023, 1024, 1025, 2047, 2049, 4097};

} // namespace

TEST(Window, HannIsEvaluatedAsItIsWritten) {
    for (int const N : lengths)
        forEachPolicy([N] { EXPECT_TRUE(sameBits(elementsOf(hann(N)), referenceHann(N))) << N; });
}

TEST(Window, HammingIsEvaluatedAsItIsWritten) {
    for (int const N : lengths)
        forEachPolicy([N] {
            EXPECT_TRUE(sameBits(elementsOf(hamming(N)), referenceHamming(N))) << N;
            EXPECT_TRUE(sameBits(elementsOf(hamming(N, true)), referenceHamming(N))) << N;
        });
}

TEST(Window, BlackmanIsEvaluatedAsItIsWritten) {
    for (int const N : lengths)
        forEachPolicy([N] {
            EXPECT_TRUE(sameBits(elementsOf(blackman(N)), referenceBlackman(N))) << N;
            EXPECT_TRUE(sameBits(elementsOf(blackman(N, true)), referenceBlackman(N))) << N;
        });
}

TEST(Window, BlackmanSquaresWithThePowerFunction) {
    PolicyScope const scope(Inline);
    std::size_t different = 0;
    for (int N = 2; N < 600; ++N) {
        std::vector<double> const expected = referenceBlackman(N);
        ASSERT_TRUE(sameBits(elementsOf(blackman(N)), expected)) << N;
        for (std::size_t k = 0; k < expected.size(); ++k) {
            double const c = cosine(static_cast<double>(k) * twoPi / static_cast<double>(N - 1));
            different += power(c, 2.0) != c * c ? 1U : 0U;
        }
    }
    if (different == 0)
        GTEST_SKIP() << "this run-time library's power function squares as a product does";
}

TEST(Window, ValuesAreThoseOfTheTextbook) {
    constexpr int N = 101;
    Vector const hanning = hann(N);
    Vector const hammings = hamming(N);
    Vector const blackmans = blackman(N);
    for (std::size_t k = 0; k < N; ++k) {
        long double const angle =
            2.0L * 3.14159265358979323846264338327950288L * static_cast<long double>(k) / (N - 1);
        double const bound = 16.0 * unitRoundoff;
        EXPECT_TRUE(within(bound, hanning[k], static_cast<double>(0.5L - 0.5L * std::cos(angle))));
        EXPECT_TRUE(within(bound, hammings[k], static_cast<double>(0.54L - 0.46L * std::cos(angle))));
        EXPECT_TRUE(
            within(bound, blackmans[k],
                   static_cast<double>(0.42L - 0.5L * std::cos(angle) + 0.08L * std::cos(2.0L * angle))));
    }
}

TEST(Window, HannOfThreePointsIsZeroOneZero) {
    EXPECT_TRUE(sameBits(elementsOf(hann(3)), std::vector{0.0, 1.0, 0.0}));
}

TEST(Window, HammingOfThreePointsRisesFromEightHundredths) {
    Vector const w = hamming(3);
    EXPECT_TRUE(within(2.0 * unitRoundoff, elementsOf(w), std::vector{0.08, 1.0, 0.08}));
}

TEST(Window, BlackmanOfThreePointsCarriesTheRoundingOfTheDoubleAngle) {
    Vector const w = blackman(3);
    ASSERT_EQ(w.length(), 3U);
    EXPECT_NEAR(w[0], -1.3878e-17, 1e-20);
    EXPECT_TRUE(within(2.0 * unitRoundoff, w[1], 1.0));
    EXPECT_TRUE(sameBits(w[2], w[0]));
}

TEST(Window, BlackmanIsSymmetricBitForBit) {
    for (int const N : lengths) {
        Vector const w = blackman(N);
        std::vector<double> const reversed(std::reverse_iterator(w.end()), std::reverse_iterator(w.begin()));
        EXPECT_TRUE(sameBits(elementsOf(w), reversed)) << N;
    }
}

TEST(Window, OnePointIsOneInHannAndHammingButZeroInBlackman) {
    EXPECT_TRUE(sameBits(elementsOf(hann(1)), std::vector{1.0}));
    EXPECT_TRUE(sameBits(elementsOf(hamming(1)), std::vector{1.0}));
    EXPECT_TRUE(sameBits(elementsOf(hamming(1, true)), std::vector{1.0}));
    EXPECT_TRUE(sameBits(elementsOf(blackman(1)), std::vector{0.0}));
    EXPECT_TRUE(sameBits(elementsOf(blackman(1, true)), std::vector{0.0}));
}

TEST(Window, NoPointsOrFewerAreAnEmptyColumn) {
    for (int const N : {0, -1, -3, INT_MIN})
        for (Vector const& w : {hann(N), hamming(N), blackman(N), hamming(N, true), blackman(N, true)}) {
            EXPECT_EQ(w.length(), 0U) << N;
            EXPECT_EQ(w.orientation(), Column);
        }
}

TEST(Window, WindowsAreColumns) {
    for (Vector const& w : {hann(5), hamming(5), blackman(5), hamming(5, false), blackman(5, false)})
        EXPECT_EQ(w.orientation(), Column);
}

TEST(Window, PeriodicFormsDropTheLastOfOnePointMore) {
    for (int N = 0; N < 40; ++N)
        forEachPolicy([N] {
            Vector const longerHamming = hamming(N + 1);
            Vector const longerBlackman = blackman(N + 1);
            auto const n = static_cast<std::size_t>(N);
            EXPECT_TRUE(sameBits(elementsOf(hamming(N, false)), elementsOf(longerHamming).first(n))) << N;
            EXPECT_TRUE(sameBits(elementsOf(blackman(N, false)), elementsOf(longerBlackman).first(n))) << N;
        });
    EXPECT_TRUE(within(2.0 * unitRoundoff, hamming(1, false)[0], 0.08));
    EXPECT_EQ(hamming(0, false).length(), 0U);
    EXPECT_EQ(blackman(0, false).length(), 0U);
}

TEST(Window, PeriodicFormsOfFewerThanNoPointsAskForTheLargestLength) {
    // The largest number of points wraps to the smallest.
    for (int const N : {-1, -2, -100, INT_MIN, INT_MAX}) {
        EXPECT_THROW(hamming(N, false), std::length_error) << N;
        try {
            blackman(N, false);
            FAIL() << N;
        } catch (std::length_error const& error) {
            EXPECT_STREQ(error.what(), "vector too long");
        }
    }
}

} // namespace Tervane::Math::SignalProcessing::Window

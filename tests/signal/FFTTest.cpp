// Both generations of the real transform, against a discrete Fourier transform in extended precision where
// that is affordable and by its own inverse where it is not.

#include "kit/Allocations.h"
#include "kit/Bits.h"
#include "kit/ErrorBounds.h"
#include "kit/Policies.h"
#include "kit/SpecialValues.h"
#include "kit/StreamCapture.h"
#include "signal/FourierStatus.h"

#include <Math/ComplexVector.h>
#include <Math/Errors.h>
#include <Math/FFT.h>
#include <Math/Vector.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace Tervane::Math {

namespace {

using System::ErrorCode;
using System::ErrorCode2;
using TestKit::elementsOf;
using TestKit::ordinaryValues;
using TestKit::partsOf;
using TestKit::sameBits;
using TestKit::StreamCapture;
using TestKit::unitRoundoff;

Vector2 vectorOf(std::vector<double> const& values) {
    return Vector2(values.data(), values.size());
}

std::size_t binsOf(std::size_t n) {
    return n / 2 + 1;
}

/// cos and sin of 2 pi j / n for every j, each within a rounding of the extended format.
std::vector<long double> unitRoots(std::size_t n) {
    std::vector<long double> roots(2 * n);
    for (std::size_t j = 0; j < n; ++j) {
        long double const angle = 2.0L * std::numbers::pi_v<long double> * static_cast<long double>(j)
                                  / static_cast<long double>(n);
        roots[2 * j] = std::cos(angle);
        roots[2 * j + 1] = std::sin(angle);
    }
    return roots;
}

/// The one-sided spectrum by its definition.
std::vector<long double> referenceSpectrum(std::span<double const> x) {
    std::size_t const n = x.size();
    std::vector<long double> const roots = unitRoots(n);
    std::vector<long double> spectrum(2 * binsOf(n));
    for (std::size_t k = 0; k < binsOf(n); ++k) {
        long double re = 0.0L;
        long double im = 0.0L;
        for (std::size_t j = 0, phase = 0; j < n; ++j, phase = (phase + k) % n) {
            re += static_cast<long double>(x[j]) * roots[2 * phase];
            im -= static_cast<long double>(x[j]) * roots[2 * phase + 1];
        }
        spectrum[2 * k] = re;
        spectrum[2 * k + 1] = im;
    }
    return spectrum;
}

/// The samples of a one-sided spectrum by the definition of the inverse, scaled. The imaginary parts of the
/// first bin and of the Nyquist bin do not count.
std::vector<long double> referenceSamples(std::span<double const> spectrum, std::size_t n) {
    std::vector<long double> const roots = unitRoots(n);
    std::vector<long double> samples(n);
    for (std::size_t j = 0; j < n; ++j) {
        long double sum = spectrum[0];
        for (std::size_t k = 1, phase = j % n; k < binsOf(n); ++k, phase = (phase + j) % n) {
            long double const re = static_cast<long double>(spectrum[2 * k]) * roots[2 * phase];
            long double const im = static_cast<long double>(spectrum[2 * k + 1]) * roots[2 * phase + 1];
            sum += 2 * k == n ? re : 2.0L * (re - im);
        }
        samples[j] = sum / static_cast<long double>(n);
    }
    return samples;
}

template<class Number>
long double norm(std::span<Number const> values) {
    long double sum = 0.0L;
    for (Number const x : values)
        sum += static_cast<long double>(x) * static_cast<long double>(x);
    return std::sqrt(sum);
}

/// ||actual - expected|| / ||expected||; not a number if anything in `actual` is not.
long double relativeError(std::span<double const> actual, std::span<long double const> expected) {
    EXPECT_EQ(actual.size(), expected.size());
    long double sum = 0.0L;
    for (std::size_t i = 0; i < std::min(actual.size(), expected.size()); ++i) {
        long double const difference = static_cast<long double>(actual[i]) - expected[i];
        sum += difference * difference;
    }
    return std::sqrt(sum) / norm(expected);
}

/// The bound of N. J. Higham, Accuracy and Stability of Numerical Algorithms, 2nd ed., SIAM 2002,
/// theorem 24.2 on a transform by fast stages: the relative error in the 2-norm is at most (mu + gamma_4
/// (sqrt(2) + mu)) log2 n, where weights within a rounding make the bracket less than 8 unit roundoffs. A
/// large prime factor is transformed by a convolution, which is three transforms of a length below 4 n.
double boundOfTransform(std::size_t n) {
    return 8.0 * unitRoundoff * 3.0 * (2.0 + std::log2(static_cast<double>(n) + 1.0));
}

/// Every length to 64, every power of two to 4,096, and primes between them.
std::vector<std::size_t> referenceLengths() {
    std::vector<std::size_t> lengths;
    for (std::size_t n = 1; n <= 64; ++n)
        lengths.push_back(n);
    for (std::size_t n = 128; n <= 4096; n *= 2)
        lengths.push_back(n);
    for (std::size_t const n : {67u, 97u, 101u, 127u, 131u, 257u, 509u, 1009u, 1021u, 2039u, 2053u, 4093u})
        lengths.push_back(n);
    return lengths;
}

TEST(FFT, GivesTheUnscaledOneSidedSpectrum) {
    auto const spectrum = FFT::fft_real(vectorOf({1.0, 2.0, 3.0, 4.0}));
    ASSERT_TRUE(spectrum);
    EXPECT_TRUE(TestKit::within(16.0 * unitRoundoff, partsOf(spectrum.value()),
                                std::vector<double>{10.0, 0.0, -2.0, 2.0, -2.0, 0.0}));
}

TEST(FFT, MatchesTheDefinitionAtEveryLength) {
    for (std::size_t const n : referenceLengths()) {
        SCOPED_TRACE("length " + std::to_string(n));
        std::vector<double> const values = ordinaryValues(n, static_cast<unsigned>(n));
        auto spectrum = FFT::fft_real(vectorOf(values));
        ASSERT_TRUE(spectrum);
        EXPECT_EQ(spectrum.value().length(), binsOf(n));
        EXPECT_EQ(spectrum.value().orientation(), Column);
        EXPECT_LE(relativeError(partsOf(spectrum.value()), referenceSpectrum(values)), boundOfTransform(n));
    }
}

TEST(FFT, InverseMatchesTheDefinitionAtEveryLength) {
    for (std::size_t const n : referenceLengths()) {
        SCOPED_TRACE("length " + std::to_string(n));
        std::vector<double> parts = ordinaryValues(2 * binsOf(n), static_cast<unsigned>(n));
        parts[1] = 0.0;
        if (n % 2 == 0)
            parts[n + 1] = 0.0;
        auto const spectrum = ComplexVector2::fromData(parts.data(), parts.size());
        ASSERT_TRUE(spectrum);
        auto samples = FFT::ifft_real(spectrum.value(), n);
        ASSERT_TRUE(samples);
        EXPECT_EQ(samples.value().length(), n);
        EXPECT_EQ(samples.value().orientation(), Column);
        EXPECT_LE(relativeError(elementsOf(samples.value()), referenceSamples(parts, n)),
                  boundOfTransform(n));
    }
}

TEST(FFT, InverseGivesTheSamplesBack) {
    for (std::size_t const n : referenceLengths()) {
        SCOPED_TRACE("length " + std::to_string(n));
        std::vector<double> const values = ordinaryValues(n);
        auto const again = FFT::ifft_real(FFT::fft_real(vectorOf(values)).value(), n);
        ASSERT_TRUE(again);
        std::vector<long double> const expected(values.begin(), values.end());
        EXPECT_LE(relativeError(elementsOf(again.value()), expected), 2.0 * boundOfTransform(n));
    }
}

TEST(FFT, LongTransformsKeepTheEnergyAndComeBack) {
    for (std::size_t const n : {std::size_t{1} << 20, std::size_t{1'000'003}}) {
        SCOPED_TRACE("length " + std::to_string(n));
        std::vector<double> const values = ordinaryValues(n);
        auto const spectrum = FFT::fft_real(vectorOf(values));
        ASSERT_TRUE(spectrum);

        // n sum |x|^2 = sum |X|^2 over all bins: the inner ones count twice.
        std::span<double const> const parts = partsOf(spectrum.value());
        long double energy = 0.0L;
        for (std::size_t k = 0; k < binsOf(n); ++k) {
            long double const re = parts[2 * k];
            long double const im = parts[2 * k + 1];
            energy += (k == 0 || 2 * k == n ? 1.0L : 2.0L) * (re * re + im * im);
        }
        long double const ofSamples = norm(std::span<double const>(values));
        long double const expected = static_cast<long double>(n) * ofSamples * ofSamples;
        EXPECT_LE(std::abs(energy - expected) / expected, 2.0 * boundOfTransform(n));

        auto const again = FFT::ifft_real(spectrum.value(), n);
        ASSERT_TRUE(again);
        EXPECT_LE(
            relativeError(elementsOf(again.value()), std::vector<long double>(values.begin(), values.end())),
            2.0 * boundOfTransform(n));
    }
}

TEST(FFT, LeavesItsInputAlone) {
    std::vector<double> const values = ordinaryValues(101);
    Vector2 const x = vectorOf(values);
    auto const spectrum = FFT::fft_real(x);
    EXPECT_TRUE(sameBits(elementsOf(x), values));
    std::vector<double> const parts(partsOf(spectrum.value()).begin(), partsOf(spectrum.value()).end());
    ASSERT_TRUE(FFT::ifft_real(spectrum.value(), 101));
    EXPECT_TRUE(sameBits(partsOf(spectrum.value()), parts));
}

TEST(FFT, NaNAndInfinityReachTheSpectrum) {
    for (double const x :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        std::vector<double> values = ordinaryValues(16);
        values[5] = x;
        auto const spectrum = FFT::fft_real(vectorOf(values));
        ASSERT_TRUE(spectrum);
        EXPECT_FALSE(std::isfinite(spectrum.value().data()[0]));
    }
}

TEST(FFT, LengthDecidesHowManyBinsTheInverseReads) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    std::vector<double> const parts = {28.0, 0.0, 1.0, -2.0, 0.5, 3.0, -4.0, 0.0, nan, nan};
    auto const spectrum = ComplexVector2::fromData(parts.data(), parts.size());
    auto const isNaN = [](double x) {
        return std::isnan(x);
    };

    for (std::size_t const n : {6u, 7u}) { // both have four bins
        auto const samples = FFT::ifft_real(spectrum.value(), n);
        ASSERT_TRUE(samples);
        ASSERT_EQ(samples.value().length(), n);
        EXPECT_LE(relativeError(elementsOf(samples.value()), referenceSamples(parts, n)),
                  boundOfTransform(n));
    }
    auto const samples = FFT::ifft_real(spectrum.value(), 8);
    ASSERT_TRUE(samples);
    ASSERT_EQ(samples.value().length(), 8u);
    std::span<double const> const elements = elementsOf(samples.value());
    EXPECT_TRUE(std::all_of(elements.begin(), elements.end(), isNaN));
}

TEST(FFT, EmptyLengthFailsWithoutASound) {
    StreamCapture capture;
    auto const spectrum = FFT::fft_real(Vector2());
    auto const samples = FFT::ifft_real(ComplexVector2(1), 0);
    EXPECT_EQ(capture.finish(), "");
    ASSERT_FALSE(spectrum);
    ASSERT_FALSE(samples);
    EXPECT_EQ(&spectrum.error().category(), &fft_error_category());
    EXPECT_EQ(spectrum.error(), samples.error());
    // What oneMKL answers when it is asked for a transform of length 0.
    EXPECT_EQ(spectrum.error(), ErrorCode2(InvalidConfiguration, fft_error_category()));
}

TEST(LegacyFFT, EmptyLengthGivesTheResultAsItWasMadeAndNoError) {
    StreamCapture capture;
    ErrorCode error;
    ComplexVector const spectrum = FFT::fft_real(Vector(), error);
    Vector const samples = FFT::ifft_real(ComplexVector(1), 0, error);
    EXPECT_EQ(capture.finish(), "");
    EXPECT_FALSE(error.hasError());
    EXPECT_TRUE(sameBits(partsOf(spectrum), std::vector<double>{0.0, 0.0}));
    EXPECT_EQ(samples.length(), 0u);
}

TEST(LegacyFFT, NeverWritesTheError) {
    ErrorCode const before =
        System::ErrorBuilder<LinearAlgebraErrorCode>::make(LinearAlgebraErrorCode::MatrixSingular);
    ErrorCode error = before;
    for (std::size_t const n : {0u, 1u, 2u, 5u, 64u}) {
        ComplexVector const spectrum = FFT::fft_real(Vector(n, 1.0), error);
        EXPECT_EQ(spectrum.length(), binsOf(n));
        EXPECT_EQ(FFT::ifft_real(spectrum, n, error).length(), n);
        EXPECT_EQ(error.code(), before.code());
        EXPECT_EQ(error.category(), before.category());
    }
}

TEST(LegacyFFT, TransformsBitForBitAsTheCurrentGeneration) {
    for (std::size_t const n : referenceLengths()) {
        SCOPED_TRACE("length " + std::to_string(n));
        std::vector<double> const values = ordinaryValues(n);
        ErrorCode error;
        auto const current = FFT::fft_real(vectorOf(values));
        ComplexVector const legacy = FFT::fft_real(Vector(values), error);
        EXPECT_TRUE(sameBits(partsOf(legacy), partsOf(current.value())));
        auto const currentSamples = FFT::ifft_real(current.value(), n);
        Vector const legacySamples = FFT::ifft_real(legacy, n, error);
        EXPECT_TRUE(sameBits(elementsOf(legacySamples), elementsOf(currentSamples.value())));
        EXPECT_EQ(legacySamples.orientation(), Column);
        EXPECT_FALSE(error.hasError());
    }
}

/// How many bytes `calls` calls of `transform` leave on the heap, once the buffers that oneMKL keeps are
/// there.
template<class Transform>
std::ptrdiff_t bytesLeftBy(int calls, Transform const& transform) {
    for (int i = 0; i < 20; ++i)
        transform();
    std::size_t const before = TestKit::heapInUse();
    for (int i = 0; i < calls; ++i)
        transform();
    return static_cast<std::ptrdiff_t>(TestKit::heapInUse() - before);
}

// A descriptor that is not freed takes more than a kilobyte.
TEST(FFT, EachTransformGivesItsDescriptorBack) {
    constexpr int calls = 500;
    constexpr std::ptrdiff_t noise = 100 * calls;
    for (std::size_t const n : {12u, 97u, 1024u}) {
        SCOPED_TRACE("length " + std::to_string(n));
        Vector2 const x = vectorOf(ordinaryValues(n));
        ComplexVector2 const spectrum = FFT::fft_real(x).value();
        EXPECT_LE(bytesLeftBy(calls, [&] { FFT::fft_real(x).value(); }), noise);
        EXPECT_LE(bytesLeftBy(calls, [&] { FFT::ifft_real(spectrum, n).value(); }), noise);

        ErrorCode error;
        Vector const legacyX(ordinaryValues(n));
        ComplexVector const legacySpectrum = FFT::fft_real(legacyX, error);
        EXPECT_LE(bytesLeftBy(calls, [&] { FFT::fft_real(legacyX, error); }), noise);
        EXPECT_LE(bytesLeftBy(calls, [&] { FFT::ifft_real(legacySpectrum, n, error); }), noise);
    }
}

// The tables of a transform of 97 samples need a block of more than 8,000 bytes, its descriptor none.
TEST(FFT, AFailingStepLeavesItsDescriptor) {
    if (!TestKit::FailingAllocations::areSupported())
        GTEST_SKIP() << "the sanitizers' heap cannot be made to fail";
    constexpr int calls = 100;
    Vector2 const x = vectorOf(ordinaryValues(97));
    FFT::fft_real(x).value();
    std::ptrdiff_t const left = bytesLeftBy(calls, [&] {
        TestKit::FailingAllocations const failing(8'000);
        EXPECT_EQ(FFT::fft_real(x).error(), ErrorCode2(MemoryError));
    });
    EXPECT_GE(left, 1'000 * calls);
}

// All of its steps are made, whether they fail or not, so the descriptor is given back.
TEST(LegacyFFT, AFailingStepLeavesNothing) {
    if (!TestKit::FailingAllocations::areSupported())
        GTEST_SKIP() << "the sanitizers' heap cannot be made to fail";
    constexpr int calls = 100;
    Vector const x(ordinaryValues(97));
    ErrorCode error;
    FFT::fft_real(x, error);
    std::ptrdiff_t const left = bytesLeftBy(calls, [&] {
        TestKit::FailingAllocations const failing(8'000);
        FFT::fft_real(x, error);
    });
    EXPECT_LE(left, 100 * calls);
    EXPECT_FALSE(error.hasError());
}

TEST(FourierStatus, MapsEachStatusToItsOwnError) {
    using Detail::fourierError;
    EXPECT_EQ(fourierError(1), 4);
    EXPECT_EQ(fourierError(2), 1);
    EXPECT_EQ(fourierError(3), 2);
    EXPECT_EQ(fourierError(4), 7);
    EXPECT_EQ(fourierError(5), 0);
    EXPECT_EQ(fourierError(6), 9);
    EXPECT_EQ(fourierError(7), 6);
    EXPECT_EQ(fourierError(8), 8);
    EXPECT_EQ(fourierError(9), 3);
    for (long long const status : {-1LL, 10LL, 11LL, 100LL, std::numeric_limits<long long>::max(),
                                   std::numeric_limits<long long>::min()})
        EXPECT_EQ(fourierError(status), 10) << status;
}

TEST(FourierStatus, MapsNoneToDataSizeTooLarge) {
    for (long long status = -1000; status <= 1000; ++status) {
        if (status != 0) {
            EXPECT_NE(Detail::fourierError(status), DataSizeTooLarge) << status;
        }
    }
}

// On processors with AVX-512 oneMKL loses digits at even lengths with a large prime factor; the header says
// how many. A power of two of the same size shows that it is the length.
TEST(FFT, RoundTripLosesNoMoreDigitsThanTold) {
    auto const roundTripError = [](std::size_t n) {
        Vector2 const samples = vectorOf(ordinaryValues(n, 7));
        auto const again = FFT::ifft_real(FFT::fft_real(samples).value(), n).value();
        double error = 0.0;
        double largest = 0.0;
        for (std::size_t i = 0; i < n; ++i) {
            error = std::max(error, std::abs(again[i] - samples[i]));
            largest = std::max(largest, std::abs(samples[i]));
        }
        return error / largest;
    };
    EXPECT_LT(roundTripError(131072), 1e-14);
    EXPECT_LT(roundTripError(93943), 1e-14);
    EXPECT_LT(roundTripError(93944), 3e-11);
}

TEST(FFT, ThreadsTransformIndependently) {
    constexpr std::size_t threadCount = 4;
    std::vector<std::vector<double>> expected(threadCount);
    for (std::size_t t = 0; t < threadCount; ++t) {
        auto const spectrum = FFT::fft_real(vectorOf(ordinaryValues(1000 + t, static_cast<unsigned>(t))));
        expected[t].assign(partsOf(spectrum.value()).begin(), partsOf(spectrum.value()).end());
    }
    std::vector<int> failures(threadCount, 0);
    {
        std::vector<std::jthread> threads;
        for (std::size_t t = 0; t < threadCount; ++t)
            threads.emplace_back([&, t] {
                Vector2 const x = vectorOf(ordinaryValues(1000 + t, static_cast<unsigned>(t)));
                for (int i = 0; i < 50; ++i) {
                    auto const spectrum = FFT::fft_real(x);
                    failures[t] += !spectrum || !sameBits(partsOf(spectrum.value()), expected[t]);
                    auto const samples = FFT::ifft_real(spectrum.value(), x.length());
                    failures[t] += !samples || samples.value().length() != x.length();
                }
            });
    }
    EXPECT_EQ(failures, std::vector<int>(threadCount, 0));
}

} // namespace

} // namespace Tervane::Math

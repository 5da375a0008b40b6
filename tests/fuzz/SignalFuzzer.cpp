// Transforms against their definition in extended precision, windows against their formulas, random numbers
// against their range.

#include "fuzz/Fuzz.h"

#include <Math/ComplexVector.h>
#include <Math/ComplexVector2.h>
#include <Math/Errors.h>
#include <Math/FFT.h>
#include <Math/Random.h>
#include <Math/Vector.h>
#include <Math/Vector2.h>
#include <Math/Window.h>

#include <algorithm>
#include <complex>
#include <numbers>
#include <stdexcept>

namespace Tervane::Math::Fuzz {

namespace {

using System::ErrorCode;
using TestKit::sameBits;

void transforms(Input& input) {
    std::size_t const n = input.below(130);
    std::size_t const bins = n / 2 + 1;
    std::vector<double> const x = input.ordinaryValues(n);
    auto const spectrum = FFT::fft_real(Vector2(x.data(), n));
    ErrorCode error;
    ComplexVector const legacySpectrum = FFT::fft_real(Vector(x), error);
    require(!error.hasError() && legacySpectrum.length() == bins, "a legacy transform");
    if (n == 0) {
        require(!spectrum && spectrum.error() == System::ErrorCode2(InvalidConfiguration),
                "a transform of nothing");
        require(!FFT::ifft_real(ComplexVector2(1), 0), "an inverse transform of nothing");
        return;
    }
    require(spectrum.has_value() && spectrum->length() == bins, "a transform");
    require(sameBits(TestKit::partsOf(*spectrum), TestKit::partsOf(legacySpectrum)),
            "both generations' transforms");

    using Long = std::complex<long double>;
    // In the norm of the whole, as the error of a transform by stages is bounded: oneMKL loses a few digits
    // in single bins of lengths with a large prime factor.
    long double const relative = 48.0L * 0x1p-53L * (2.0L + std::log2(static_cast<long double>(n) + 1.0L));
    long double error2 = 0.0L;
    long double size2 = 0.0L;
    for (std::size_t k = 0; k < bins; ++k) {
        Long expected = 0.0L;
        for (std::size_t j = 0; j < n; ++j)
            expected +=
                static_cast<long double>(x[j])
                * std::polar(1.0L, -2.0L
                                       * std::numbers::pi_v<long double> * static_cast<long double>(j * k % n)
                                       / static_cast<long double>(n));
        Long const actual(spectrum->data()[2 * k], spectrum->data()[2 * k + 1]);
        error2 += std::norm(actual - expected);
        size2 += std::norm(expected);
    }
    require(error2 <= relative * relative * size2, "a transform is its definition");

    auto const samples = FFT::ifft_real(*spectrum, n);
    Vector const legacySamples = FFT::ifft_real(legacySpectrum, n, error);
    require(samples.has_value() && !error.hasError(), "an inverse transform");
    require(sameBits(TestKit::elementsOf(*samples), TestKit::elementsOf(legacySamples)),
            "both generations' inverses");
    long double left2 = 0.0L;
    long double samples2 = 0.0L;
    for (std::size_t j = 0; j < n; ++j) {
        long double const difference =
            static_cast<long double>(samples->data()[j]) - static_cast<long double>(x[j]);
        left2 += difference * difference;
        samples2 += static_cast<long double>(x[j]) * static_cast<long double>(x[j]);
    }
    require(left2 <= 4.0L * relative * relative * samples2, "an inverse transform gives the samples back");
}

void windows(Input& input) {
    namespace Window = SignalProcessing::Window;
    int const n = static_cast<int>(input.below(300)) - 4;
    auto const last = static_cast<double>(n - 1);
    auto const length = static_cast<std::size_t>(std::max(n, 0));
    constexpr double twoPi = 6.283185307179586;
    double const volatile square =
        2.0; // the general power function, which may round otherwise than a product
    std::vector<double> hann(length);
    std::vector<double> hamming(length);
    std::vector<double> blackman(length);
    if (n == 1) {
        hann = hamming = {1.0};
        blackman = {0.0};
    } else {
        for (std::size_t i = 0; i < length; ++i) {
            double const c = std::cos(twoPi * static_cast<double>(i) / last);
            hann[i] = 0.5 * (1.0 - c);
            hamming[i] = 0.54 - 0.46 * c;
        }
        for (std::size_t i = 0; i < (length + 1) / 2; ++i) {
            double const c = std::cos(static_cast<double>(i) * twoPi / last);
            blackman[i] = (0.42 - 0.5 * c) + 0.08 * (std::pow(c, square) * 2.0 - 1.0);
            blackman[length - 1 - i] = blackman[i];
        }
    }
    TestKit::PolicyScope const scope(input.oneOf(TestKit::allPolicies));
    require(sameBits(TestKit::elementsOf(Window::hann(n)), hann), "hann");
    require(sameBits(TestKit::elementsOf(Window::hamming(n)), hamming), "hamming");
    require(sameBits(TestKit::elementsOf(Window::blackman(n)), blackman), "blackman");
    require(sameBits(TestKit::elementsOf(Window::hamming(n, true)), hamming), "symmetric hamming");
    require(sameBits(TestKit::elementsOf(Window::blackman(n, true)), blackman), "symmetric blackman");
    auto const periodic = [n](auto const& window) {
        try {
            Vector const w = window(n, false);
            Vector const longer = window(n + 1, true);
            require(n >= 0 && sameBits(TestKit::elementsOf(w), TestKit::elementsOf(longer).first(w.length()))
                        && w.length() == static_cast<std::size_t>(n),
                    "a periodic window is the longer one without its last element");
        } catch (std::length_error const&) {
            require(n < 0, "a window of no negative length is too long");
        }
    };
    periodic([](int points, bool isSymmetric) { return Window::hamming(points, isSymmetric); });
    periodic([](int points, bool isSymmetric) { return Window::blackman(points, isSymmetric); });
}

void randomNumbers(Input& input) {
    double const lo = input.ordinaryValue();
    double const hi = lo + std::abs(input.ordinaryValue());
    std::size_t const n = input.below(300);
    Vector2 const drawn = Random::uniform(lo, hi, n);
    require(drawn.length() == n, "as many random numbers as asked for");
    for (std::size_t i = 0; i < n; ++i)
        require(drawn[i] >= lo && drawn[i] <= hi, "a random number is in its range");
    std::size_t const rows = input.below(8);
    std::size_t const columns = input.below(8);
    Matrix2 const table = Random::uniform(lo, hi, rows, columns);
    require(table.rows() == rows && table.columns() == columns, "a random matrix's shape");
    for (std::size_t i = 0; i < rows * columns; ++i)
        require(table.data()[i] >= lo && table.data()[i] <= hi, "a random matrix's element is in its range");
}

} // namespace

void fuzzSignal(Input& input) {
    switch (input.below(4)) {
    case 0:
        windows(input);
        break;
    case 1:
        randomNumbers(input);
        break;
    default:
        transforms(input);
    }
}

} // namespace Tervane::Math::Fuzz

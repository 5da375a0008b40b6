#include "Comparison.h"

#include <Math/Elementwise.h>
#include <Math/FFT.h>
#include <Math/Generators.h>
#include <Math/Reductions.h>
#include <System/Guard.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

namespace Transient {

namespace Math = Tervane::Math;

namespace {

// Below a nanosecond over 80 periods of 400 kHz, so that edges of tens of nanoseconds are resolved.
constexpr int samples = 1 << 18;

double rootMeanSquare(Vector2 const& x) {
    return std::sqrt(Math::mean(x * x));
}

std::complex<double> bin(Math::ComplexVector2 const& spectrum, std::size_t k) {
    return {spectrum.data()[2 * k], spectrum.data()[2 * k + 1]};
}

} // namespace

PeriodGrid::PeriodGrid(double start, double stop, double circuitPeriod)
    : period(circuitPeriod),
      periods(static_cast<std::size_t>(std::floor((stop - start) / period * (1.0 + 1e-12)))) {
    double const interval = static_cast<double>(periods) * period / samples;
    times = Math::arange(samples) * interval + start;
}

double Difference::largestHarmonic() const {
    return std::abs(*std::ranges::max_element(harmonics, {}, [](double level) { return std::abs(level); }));
}

Expected<Difference, ErrorCode2> compare(Vector2 const& signal, Vector2 const& reference,
                                         std::size_t periods) {
    return Tervane::System::guard<Difference>([&] {
        Vector2 const difference = signal - reference;
        double const mean = Math::mean(reference);
        Difference result{(Math::mean(signal) - mean) / std::abs(mean),
                          rootMeanSquare(difference) / rootMeanSquare(reference),
                          Math::max(Math::abs(difference)) / Math::max(Math::abs(reference)),
                          {}};
        auto const ours = Math::FFT::fft_real(signal).value();
        auto const theirs = Math::FFT::fft_real(reference).value();
        for (std::size_t h = 1; h <= comparedHarmonics; ++h) {
            result.harmonics[h - 1] =
                20.0 * std::log10(std::abs(bin(ours, h * periods) / bin(theirs, h * periods)));
        }
        return result;
    });
}

Expected<double, ErrorCode2> lag(PeriodGrid const& grid, Vector2 const& signal, Vector2 const& reference) {
    return Tervane::System::guard<double>([&] {
        auto const later = Math::FFT::fft_real(signal).value();
        auto const earlier = Math::FFT::fft_real(reference).value();
        double const phase = std::arg(bin(earlier, grid.periods) / bin(later, grid.periods));
        return phase / (2.0 * std::numbers::pi) * grid.period;
    });
}

} // namespace Transient

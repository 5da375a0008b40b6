#include "Emission.h"

#include <Math/Elementwise.h>
#include <Math/Errors.h>
#include <Math/FFT.h>
#include <Math/Interpolation.h>
#include <Math/Reductions.h>
#include <Math/Window.h>

#include <common/CsvTable.h>
#include <fmt/format.h>

#include <array>
#include <numbers>
#include <vector>

namespace ConverterEmi {

namespace {

using Tervane::Math::Vector;

/// The first @p length elements of a vector of the legacy generation, which the windows are.
Vector2 toVector2(Vector const& values, std::size_t length) {
    return Vector2(values.data(), length);
}

constexpr double lowestFrequency = 9e3;

template<std::size_t n>
Vector2 toVector(std::array<double, n> const& values) {
    return Vector2(values.data(), n);
}

} // namespace

Vector2 makeWindow(WindowKind kind, std::size_t length) {
    namespace Window = Tervane::Math::SignalProcessing::Window;
    int const n = static_cast<int>(length);
    switch (kind) {
    case WindowKind::Hann:
        // There is no periodic form of this one, so the last of n + 1 points is left out here.
        return toVector2(Window::hann(n + 1), length);
    case WindowKind::Hamming:
        return toVector2(Window::hamming(n, false), length);
    case WindowKind::Blackman:
        return toVector2(Window::blackman(n, false), length);
    case WindowKind::None:
        break;
    }
    return Vector2(length, 1.0);
}

Expected<Spectrum, ErrorCode2> computeSpectrum(Vector2 const& samples, Vector2 const& window) {
    using namespace Tervane::Math;
    auto bins = FFT::fft_real((samples - mean(samples)) * window);
    if (!bins) {
        return bins.error();
    }
    double const coherentGain = mean(window);
    *bins *= 2.0 / (coherentGain * static_cast<double>(samples.length()));
    Vector2 amplitude = abs(*bins);
    return Spectrum{std::move(*bins), std::move(amplitude)};
}

Vector2 toDecibelMicrovolts(Vector2 const& amplitude) {
    constexpr double microvolt = 1e-6;
    return 20.0 * Tervane::Math::log10(amplitude / (std::numbers::sqrt2 * microvolt));
}

Expected<RoundTrip, ErrorCode2> rebuild(Vector2 const& samples) {
    using namespace Tervane::Math;
    auto const bins = FFT::fft_real(samples);
    if (!bins) {
        return bins.error();
    }
    auto rebuilt = FFT::ifft_real(*bins, samples.length());
    if (!rebuilt) {
        return rebuilt.error();
    }
    double const largestError = max(abs(*rebuilt - samples));
    return RoundTrip{std::move(*rebuilt), largestError};
}

Expected<void, ErrorCode2> checkBand(Band const& band) {
    // Written so that a NaN fails too.
    if (!(band.start >= lowestFrequency)) {
        return Tervane::Math::StartFrequencyTooSmall;
    }
    if (!(band.start <= band.stop)) {
        return Tervane::Math::StartAboveStop;
    }
    return {};
}

LimitLine::LimitLine(Vector2 const& frequency, Vector2 const& level)
    : _frequency(frequency), _logFrequency(Tervane::Math::log10(frequency)), _level(level) {}

LimitLine LimitLine::builtIn(Band const& band) {
    if (band.start < 150e3) {
        return LimitLine(toVector<9>({9e3, 50e3, 50e3, 150e3, 150e3, 500e3, 5e6, 5e6, 30e6}),
                         toVector<9>({110.0, 110.0, 90.0, 80.0, 56.0, 46.0, 46.0, 50.0, 50.0}));
    }
    return LimitLine(toVector<5>({150e3, 500e3, 5e6, 5e6, 30e6}),
                     toVector<5>({56.0, 46.0, 46.0, 50.0, 50.0}));
}

Expected<LimitLine, ErrorCode2> LimitLine::read(std::filesystem::path const& file, Place& place) {
    auto const table = Examples::readCsv(file, {"frequency_Hz", "limit_dBuV"}, place);
    if (!table) {
        return table.error();
    }
    auto const& frequency = table->columns[0];
    auto const& level = table->columns[1];
    if (frequency.empty()) {
        return Examples::FileFailure::FileEmpty;
    }
    for (std::size_t i = 0; i < frequency.size(); ++i) {
        if (frequency[i] <= 0.0 || (i > 0 && frequency[i] < frequency[i - 1])) {
            place.line = table->lines[i];
            place.detail = fmt::format("{} Hz", frequency[i]);
            return Failure::FrequencyNotIncreasing;
        }
    }
    return LimitLine(Vector2(frequency.data(), frequency.size()), Vector2(level.data(), level.size()));
}

Expected<void, ErrorCode2> LimitLine::checkCovers(Band const& band, Place& place) const {
    if (band.start < _frequency.front() || band.stop > _frequency.back()) {
        place.detail = fmt::format("{:g} Hz to {:g} Hz; the limit is defined from {:g} Hz to {:g} Hz",
                                   band.start, band.stop, _frequency.front(), _frequency.back());
        return Failure::BandBeyondLimit;
    }
    return {};
}

Vector2 LimitLine::at(Vector2 const& frequency) const {
    return Tervane::Math::interp(Tervane::Math::log10(frequency), _logFrequency, _level);
}

LimitLine LimitLine::within(Band const& band) const {
    std::vector<double> frequency{band.start};
    std::vector<double> level{at(Vector2(1, band.start))[0]};
    for (std::size_t i = 0; i < _frequency.length(); ++i) {
        // Of a step at the band's start, the level behind it belongs to the band as well.
        bool const endsStep = i > 0 && _frequency[i - 1] == _frequency[i];
        bool const behindStart = band.start < _frequency[i] || (band.start == _frequency[i] && endsStep);
        if (behindStart && _frequency[i] < band.stop) {
            frequency.push_back(_frequency[i]);
            level.push_back(_level[i]);
        }
    }
    frequency.push_back(band.stop);
    level.push_back(at(Vector2(1, band.stop))[0]);
    return LimitLine(Vector2(frequency.data(), frequency.size()), Vector2(level.data(), level.size()));
}

} // namespace ConverterEmi

#include "Spectrum.h"

#include <Math/Elementwise.h>
#include <Math/FFT.h>
#include <Math/Reductions.h>
#include <Math/Window.h>

#include <numbers>

namespace ConverterEmi {

namespace {

using Tervane::Math::Vector;

/// The first @p length elements of a vector of the legacy generation, which the windows are.
Vector2 toVector2(Vector const& values, std::size_t length) {
    return Vector2(values.data(), length);
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

} // namespace ConverterEmi

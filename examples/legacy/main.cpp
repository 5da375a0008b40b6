/// @file
/// One chain of steps in both generations of the interface: resample, remove the mean, window, transform.
///
/// The legacy generation is there for programs that were written with it. Its loops are the current one's, so
/// the two spectra are the same to the last bit; what differs is how containers and failures are handled:
///
/// |              | legacy                                    | current                        |
/// |--------------|-------------------------------------------|--------------------------------|
/// | containers   | polymorphic objects (Vector)              | plain values (Vector2)         |
/// | failures     | an ErrorCode that the caller hands in     | an Expected that is returned   |
/// | interp below | the first breakpoint itself (a time here) | the value at that breakpoint   |
///
/// The exit code is 0 when the spectra agree bit for bit.

#include <Math/Math.h>
#include <System/System.h>

#include <cstdlib>
#include <cstring>
#include <iomanip>
#include <iostream>
#include <vector>

namespace {

using namespace Tervane::Math;
using Tervane::System::ErrorCode;
using Tervane::System::ErrorCode2;
using Tervane::System::Expected;

constexpr int samples = 4096;
constexpr double period = 2.5e-6;
constexpr int periods = 8;
constexpr double interval = period * periods / samples;

/// The corners of a train of voltage pulses: times in s, and volts at them, with straight edges between.
struct Corners {
    std::vector<double> time;
    std::vector<double> volts;
};

Corners pulses() {
    constexpr double edge = 20e-9;
    constexpr double width = 0.6e-6;
    Corners corners;
    for (int i = 0; i <= periods; ++i) {
        double const start = i * period;
        corners.time.insert(corners.time.end(), {start, start + edge, start + width, start + width + edge});
        corners.volts.insert(corners.volts.end(), {0.0, 24.0, 24.0, 0.0});
    }
    return corners;
}

/// Peak values in V at multiples of 50 kHz, by the legacy interface.
Vector legacySpectrum(Corners const& corners, ErrorCode& error) {
    // Half a step behind the first corner: at a corner before or at the first, interp would give its time.
    Vector const time = Vector::arange(samples) * interval + 0.5 * interval;
    Vector const volts = interp(time, Vector(corners.time), Vector(corners.volts));
    Vector const window = SignalProcessing::Window::blackman(samples, false);
    ComplexVector const spectrum = FFT::fft_real((volts - mean(volts)) * window, error);
    return abs(spectrum) * (2.0 / (samples * mean(window)));
}

/// The same by the current interface.
Expected<Vector2, ErrorCode2> currentSpectrum(Corners const& corners) {
    Vector2 const time = arange(samples) * interval + 0.5 * interval;
    Vector2 const volts = interp(time, Vector2(corners.time.data(), corners.time.size()),
                                 Vector2(corners.volts.data(), corners.volts.size()));
    // Windows exist in the legacy generation only.
    Vector const blackman = SignalProcessing::Window::blackman(samples, false);
    Vector2 const window(blackman.data(), blackman.length());
    auto const spectrum = FFT::fft_real((volts - mean(volts)) * window);
    if (!spectrum) {
        return spectrum.error();
    }
    return abs(*spectrum) * (2.0 / (samples * mean(window)));
}

} // namespace

int main() {
    Corners const corners = pulses();

    ErrorCode error;
    Vector const legacy = legacySpectrum(corners, error);
    if (error.hasError()) {
        std::cerr << error.message().narrow() << '\n';
        return EXIT_FAILURE;
    }
    auto const current = currentSpectrum(corners);
    if (!current) {
        std::cerr << current.error().message().narrow() << '\n';
        return EXIT_FAILURE;
    }

    std::cout << "harmonic  legacy/V    current/V\n" << std::fixed << std::setprecision(6);
    for (std::size_t harmonic = 1; harmonic <= 5; ++harmonic) {
        std::cout << std::setw(8) << harmonic << std::setw(11) << legacy[harmonic * periods] << std::setw(13)
                  << (*current)[harmonic * periods] << '\n';
    }

    bool const identical =
        legacy.length() == current->length()
        && std::memcmp(legacy.data(), current->data(), legacy.length() * sizeof(double)) == 0;
    std::cout << legacy.length() << " bins " << (identical ? "agree bit for bit" : "DIFFER") << '\n';
    return identical ? EXIT_SUCCESS : EXIT_FAILURE;
}

/// The strongest tone in a sampled voltage.
#include <Math/Math.h>

#include <algorithm>
#include <iostream>
#include <numbers>

int main() {
    using namespace Tervane::Math;

    // One millisecond of 2 V at 50 kHz on top of 3 V, sampled at 1.024 MHz.
    Vector2 const time = arange(1024) / 1.024e6;
    Vector2 const volts = 3.0 + 2.0 * sin(2.0 * std::numbers::pi * 50e3 * time);

    Vector const hann = SignalProcessing::Window::hann(1024);
    Vector2 const window(hann.data(), hann.length());
    auto const spectrum = FFT::fft_real((volts - mean(volts)) * window);
    if (!spectrum) {
        std::cerr << spectrum.error().message() << '\n';
        return 1;
    }

    // A window lowers every tone by its sum, and half of each tone is at the negative frequencies.
    Vector2 const amplitude = abs(*spectrum) * 2.0 / sum(window);
    auto const strongest = std::max_element(amplitude.data(), amplitude.data() + amplitude.length());
    std::cout << *strongest << " V at " << strongest - amplitude.data() << " kHz\n";
}

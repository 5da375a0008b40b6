/// The strongest tone in a sampled voltage.
#include <Math/Math.h>

#include <algorithm>
#include <iostream>

int main() {
    using namespace Tervane::Math;
    Vector2 const time = arange(1024) / 1.024e6; // one millisecond
    Vector2 const volts = 3.0 + 2.0 * sin(6.283185307179586 * 50e3 * time);
    auto const spectrum = FFT::fft_real(volts - mean(volts));
    if (!spectrum) {
        return 1;
    }
    Vector2 const amplitude = abs(*spectrum) * (2.0 / 1024);
    auto const strongest = std::max_element(amplitude.data(), amplitude.data() + amplitude.length());
    std::cout << *strongest << " V at " << strongest - amplitude.data() << " kHz\n";
}

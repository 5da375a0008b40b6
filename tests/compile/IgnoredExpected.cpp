// Ignoring a result is a warning, which these tests turn into an error.
#include <Math/FFT.h>

void transform(Tervane::Math::Vector2 const& samples) {
#ifdef WRONG
    Tervane::Math::FFT::fft_real(samples);
#else
    static_cast<void>(Tervane::Math::FFT::fft_real(samples));
#endif
}

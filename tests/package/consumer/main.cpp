// A caller's program: it exits with 0 when the installed library computes what it should.

#include <Math/Math.h>
#include <System/System.h>

#include <cmath>
#include <iostream>

int main() {
    using namespace Tervane::Math;

    Matrix2 a(2, 2, 0.0);
    a[0][0] = 2.0;
    a[1][1] = 4.0;
    Vector2 b = arange(1, 3);
    if (!LAPACK::gesv(a, b) || b[0] != 0.5 || b[1] != 0.5) {
        std::cerr << "gesv: " << b.toString().value() << '\n';
        return 1;
    }
    auto const spectrum = FFT::fft_real(zeros(8) + 1.0);
    if (!spectrum || std::abs(spectrum->data()[0] - 8.0) > 1e-12) {
        std::cerr << "fft_real\n";
        return 1;
    }
    try {
        static_cast<void>(ComplexVector2::fromData(b.data(), 1).value());
    } catch (Tervane::System::bad_expected_access<Tervane::System::ErrorCode2> const& exception) {
        return exception.error() == Tervane::System::ErrorCode2(OddComplexDataLength) ? 0 : 1;
    }
    std::cerr << "fromData\n";
    return 1;
}

// A program for memory checkers and the thread sanitizer: it uses every runtime under the library, from two
// threads, and makes a mistake of its own when asked to.

#include <Math/Math.h>

#include <cstdio>
#include <cstring>
#include <thread>

using namespace Tervane::Math;

namespace {

double work() {
    Vector2 v(200'000);
    double result = 0.0;
    for (int i = 0; i < 3; ++i) {
        v = sin(v + 1.0);
        Matrix2 const a(64, 64, 1.0);
        auto const product = BLAS::gemm(NoTranspose, NoTranspose, a, a);
        auto const spectrum = FFT::fft_real(v);
        sort(v);
        result += sum(v) + (*product)[0][0] + spectrum->data()[0];
    }
    return result;
}

} // namespace

int main(int count, char** arguments) {
    char const* const mistake = count > 1 ? arguments[1] : "";
    double other = 0.0;
    std::thread thread([&] { other = work(); });
    double const own = work();
    Vector2 shared(8);
    if (std::strcmp(mistake, "race") == 0)
        shared[0] = other; // before the other thread is waited for
    thread.join();
    if (std::strcmp(mistake, "leak") == 0)
        new Vector2(1000);
    if (std::strcmp(mistake, "overrun") == 0)
        shared[8] = 1.0;
    std::printf("%d\n", own == other && shared[1] == 0.0);
    return own == other ? 0 : 1;
}

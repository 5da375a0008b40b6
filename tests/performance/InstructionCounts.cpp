// Short operations, each between two marks that valgrind's callgrind takes as the beginning and the end of a
// count. instruction_counts.py runs it.
#include <Math/Math.h>

#include <valgrind/callgrind.h>

#include <cstddef>
#include <cstdio>

namespace {

using namespace Tervane::Math;

constexpr int calls = 100;

void use(void const* result) {
    asm volatile("" : : "r"(result) : "memory");
}

/// Counts `calls` calls, the first of which is not the first ever: then buffers and tables are there.
template<class Call>
void count(char const* name, Call const& call) {
    for (int i = 0; i < 5; ++i)
        call();
    CALLGRIND_ZERO_STATS;
    for (int i = 0; i < calls; ++i)
        call();
    CALLGRIND_DUMP_STATS_AT(name);
}

} // namespace

int main() {
    setExecutionPolicy(Inline);
    std::printf("%d\n", calls);

    Vector2 const a(16, 1.5);
    Vector2 const b(16, 2.5);
    count("fresh sum of 16", [&] {
        Vector2 const result = a + b;
        use(result.data());
    });

    Vector2 c(16, 1.5);
    count("sum of 16 in place", [&] {
        c += b;
        use(c.data());
    });

    count("max of 16", [&] {
        double const result = max(a);
        use(&result);
    });

    count("slice of 16", [&] {
        Vector2 const result = a[makeSlice(0, 8, 1)];
        use(result.data());
    });

    Vector const legacyA(16, 1.5);
    Vector const legacyB(16, 2.5);
    count("legacy fresh product of 16", [&] {
        Vector const result = legacyA * legacyB;
        use(result.data());
    });

    count("sort of 16", [&] {
        Vector2 const result = sort(a);
        use(result.data());
    });

    Matrix2 const m(4, 4, 1.5);
    count("gemm of 4 rows", [&] {
        auto const result = BLAS::gemm(NoTranspose, NoTranspose, m, m);
        use(&result);
    });

    count("transform of 16", [&] {
        auto const result = FFT::fft_real(a);
        use(&result);
    });
}

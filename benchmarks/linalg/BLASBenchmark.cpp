// Matrix products and the unchecked solve against the raw routines, on containers on both sides, so that both
// allocate the same result.

#include "limits/Limits.h"
#include "linalg/RawRoutines.h"

#include <Math/BLAS.h>

#include <benchmark/benchmark.h>

#include <cstddef>

namespace Tervane::Math::Bench {

namespace {

Matrix2 matrix(std::size_t n) {
    Matrix2 m(n, n, 0.0);
    for (std::size_t i = 0; i < n * n; ++i)
        m.data()[i] = 1.0 / static_cast<double>(1 + i * 7919 % 1009);
    for (std::size_t i = 0; i < n; ++i)
        m.data()[i * (n + 1)] += static_cast<double>(n);
    return m;
}

std::size_t sizeOf(benchmark::State const& state) {
    return static_cast<std::size_t>(state.range(0));
}

void gemmLibrary(benchmark::State& state) {
    Matrix2 const a = matrix(sizeOf(state));
    for (auto _ : state) {
        auto const c = BLAS::gemm(NoTranspose, NoTranspose, a, a);
        benchmark::DoNotOptimize(c.value().data());
        benchmark::ClobberMemory();
    }
}

void gemmOneMKL(benchmark::State& state) {
    std::size_t const n = sizeOf(state);
    Matrix2 const a = matrix(n);
    for (auto _ : state) {
        Matrix2 c(n, n, 0.0);
        rawGemm(n, a.data(), a.data(), c.data());
        benchmark::DoNotOptimize(c.data());
        benchmark::ClobberMemory();
    }
}

void gemvLibrary(benchmark::State& state) {
    Matrix2 const a = matrix(sizeOf(state));
    Vector2 const x(sizeOf(state), 1.0);
    for (auto _ : state) {
        auto const y = BLAS::gemv(NoTranspose, a, x);
        benchmark::DoNotOptimize(y.value().data());
        benchmark::ClobberMemory();
    }
}

void gemvOneMKL(benchmark::State& state) {
    std::size_t const n = sizeOf(state);
    Matrix2 const a = matrix(n);
    Vector2 const x(n, 1.0);
    for (auto _ : state) {
        Vector2 y(n);
        rawGemv(n, a.data(), x.data(), y.data());
        benchmark::DoNotOptimize(y.data());
        benchmark::ClobberMemory();
    }
}

/// The solve overwrites its arguments, so both sides work on copies.
template<class Solve>
void gesv(benchmark::State& state, Solve const& solve) {
    Matrix2 const a = matrix(sizeOf(state));
    Vector2 const b(sizeOf(state), 1.0);
    for (auto _ : state) {
        Matrix2 factors = a;
        Vector2 x = b;
        if (!solve(factors, x))
            state.SkipWithError("not solved");
        benchmark::DoNotOptimize(x.data());
        benchmark::ClobberMemory();
    }
}

[[maybe_unused]] bool const registered = [] {
    for (auto const n : {4, 8, 16, 64, 128, 256, 512, 1024}) {
        double const order = n;
        registerArithmeticLimit("Gemm", n, 2.0 * order * order * order);
        registerReadLimit("Gemv", n, static_cast<long>(n) * n, 2.0 * order * order);
        registerArithmeticLimit("Gesv", n, 2.0 / 3.0 * order * order * order + 2.0 * order * order);
        benchmark::RegisterBenchmark("Gemm/onemkl", gemmOneMKL)->Arg(n)->UseRealTime();
        benchmark::RegisterBenchmark("Gemm/library", gemmLibrary)->Arg(n)->UseRealTime();
        benchmark::RegisterBenchmark("Gemv/onemkl", gemvOneMKL)->Arg(n)->UseRealTime();
        benchmark::RegisterBenchmark("Gemv/library", gemvLibrary)->Arg(n)->UseRealTime();
        benchmark::RegisterBenchmark(
            "Gesv/onemkl",
            [](benchmark::State& state) {
                gesv(state, [](Matrix2& a, Vector2& b) { return rawGesv(a.rows(), a.data(), b.data()); });
            })
            ->Arg(n)
            ->UseRealTime();
        benchmark::RegisterBenchmark(
            "Gesv/library",
            [](benchmark::State& state) {
                gesv(state, [](Matrix2& a, Vector2& b) { return BLAS::gesv(a, b).has_value(); });
            })
            ->Arg(n)
            ->UseRealTime();
    }
    return true;
}();

} // namespace

} // namespace Tervane::Math::Bench

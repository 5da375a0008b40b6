// The least-squares drivers against the raw routines with their workspaces, for a fit of a quarter as many
// parameters as there are measurements.

#include "limits/Limits.h"
#include "linalg/RawRoutines.h"

#include <Math/LAPACK.h>

#include <benchmark/benchmark.h>

#include <cstddef>

namespace Tervane::Math::Bench {

namespace {

/// The drivers overwrite their arguments, so both sides work on copies.
template<class Solve>
void solve(benchmark::State& state, Solve const& solveOnce) {
    auto const m = static_cast<std::size_t>(state.range(0));
    std::size_t const n = m / 4;
    Matrix2 model(m, n, 0.0);
    for (std::size_t i = 0; i < m * n; ++i)
        model.data()[i] = 1.0 / static_cast<double>(1 + i * 7919 % 1009);
    Vector2 const measurements(m, 1.0);
    for (auto _ : state) {
        Matrix2 a = model;
        Vector2 b = measurements;
        if (!solveOnce(a, b))
            state.SkipWithError("not solved");
        benchmark::DoNotOptimize(b.data());
        benchmark::ClobberMemory();
    }
}

[[maybe_unused]] bool const registered = [] {
    for (auto const m : {4, 16, 64, 128, 256}) {
        // Of a fit by orthogonal factors, for both drivers: 2 m n^2 - 2/3 n^3 for the factors, then
        // 4 m n - n^2.
        double const rows = m, columns = rows / 4.0;
        double const operations = 2.0 * rows * columns * columns - 2.0 / 3.0 * columns * columns * columns
                                  + 4.0 * rows * columns - columns * columns;
        registerArithmeticLimit("Gels", m, operations);
        registerArithmeticLimit("Gelsd", m, operations);
        benchmark::RegisterBenchmark("Gels/onemkl",
                                     [](benchmark::State& state) {
                                         solve(state, [](Matrix2& a, Vector2& b) {
                                             return rawGels(a.rows(), a.columns(), a.data(), b.data());
                                         });
                                     })
            ->Arg(m)
            ->UseRealTime();
        benchmark::RegisterBenchmark("Gels/library",
                                     [](benchmark::State& state) {
                                         solve(state, [](Matrix2& a, Vector2& b) {
                                             return LAPACK::gels(NoTranspose, a, b).has_value();
                                         });
                                     })
            ->Arg(m)
            ->UseRealTime();
        benchmark::RegisterBenchmark("Gelsd/onemkl",
                                     [](benchmark::State& state) {
                                         solve(state, [](Matrix2& a, Vector2& b) {
                                             return rawGelsd(a.rows(), a.columns(), a.data(), b.data());
                                         });
                                     })
            ->Arg(m)
            ->UseRealTime();
        benchmark::RegisterBenchmark(
            "Gelsd/library",
            [](benchmark::State& state) {
                solve(state, [](Matrix2& a, Vector2& b) { return LAPACK::gelsd(a, b, -1.0).has_value(); });
            })
            ->Arg(m)
            ->UseRealTime();
    }
    return true;
}();

} // namespace

} // namespace Tervane::Math::Bench

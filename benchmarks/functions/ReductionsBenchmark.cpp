// The sum against the best loop in its own order and against Eigen's, the maximum against the standard
// search and Eigen's.

#include "functions/Inputs.h"
#include "limits/Limits.h"

#include <Math/ExecutionPolicy.h>
#include <Math/Reductions.h>

#include <benchmark/benchmark.h>

#ifdef TVNMATH_BENCHMARK_EIGEN
#    include <Eigen/Core>
#endif

#include <algorithm>
#include <cstring>

namespace Tervane::Math::Bench {

namespace {

template<class Reduction>
void reduce(benchmark::State& state, AlgorithmExecutionPolicy policy, Reduction reduction) {
    Vector2 x = uniformNumbers(static_cast<std::size_t>(state.range(0)), -1.0, 1.0);
    setExecutionPolicy(policy);
    for (auto _ : state) {
        double* elements = x.data();
        benchmark::DoNotOptimize(elements);
        benchmark::ClobberMemory();
        double result = reduction(x);
        benchmark::DoNotOptimize(result);
    }
    setExecutionPolicy(ParallelUnsequenced);
    state.SetBytesProcessed(state.iterations() * state.range(0) * 8);
}

double fourLaneLoop(Vector2 const& x) {
    using Lanes __attribute__((vector_size(32))) = double;
    double const* const elements = x.data();
    std::size_t const n = x.length();
    Lanes lanes = {};
    std::size_t i = 0;
    for (; i + 4 <= n; i += 4) {
        Lanes next;
        std::memcpy(&next, elements + i, sizeof next);
        lanes += next;
    }
    double total = 0.0 + ((lanes[0] + lanes[2]) + (lanes[1] + lanes[3]));
    for (; i < n; ++i)
        total += elements[i];
    return total;
}

void sumInline(benchmark::State& state) {
    reduce(state, Inline, [](Vector2 const& x) { return sum(x); });
}

void sumDefault(benchmark::State& state) {
    reduce(state, ParallelUnsequenced, [](Vector2 const& x) { return sum(x); });
}

void sumLoop(benchmark::State& state) {
    reduce(state, Inline, fourLaneLoop);
}

#ifdef TVNMATH_BENCHMARK_EIGEN
Eigen::Map<Eigen::VectorXd const, Eigen::Aligned64> mapped(Vector2 const& x) {
    return {x.data(), static_cast<Eigen::Index>(x.length())};
}

void sumEigen(benchmark::State& state) {
    reduce(state, Inline, [](Vector2 const& x) { return mapped(x).sum(); });
}

void maxEigen(benchmark::State& state) {
    reduce(state, Inline, [](Vector2 const& x) { return mapped(x).maxCoeff(); });
}
#endif

void maxLibrary(benchmark::State& state) {
    reduce(state, Inline, [](Vector2 const& x) { return max(x); });
}

void maxStandard(benchmark::State& state) {
    reduce(state, Inline,
           [](Vector2 const& x) { return *std::max_element(x.data(), x.data() + x.length()); });
}

[[maybe_unused]] bool const registered = [] {
    for (auto const n : {16, 64, 65, 256, 1'024, 4'096, 16'384, 65'536, 1'000'000}) {
        benchmark::RegisterBenchmark("Sum/loop", sumLoop)->Arg(n)->UseRealTime();
        benchmark::RegisterBenchmark("Sum/inline", sumInline)->Arg(n)->UseRealTime();
#ifdef TVNMATH_BENCHMARK_EIGEN
        benchmark::RegisterBenchmark("Sum/eigen", sumEigen)->Arg(n)->UseRealTime();
        benchmark::RegisterBenchmark("Max/eigen", maxEigen)->Arg(n)->UseRealTime();
#endif
        benchmark::RegisterBenchmark("Sum/default", sumDefault)->Arg(n)->UseRealTime();
        benchmark::RegisterBenchmark("Max/std", maxStandard)->Arg(n)->UseRealTime();
        benchmark::RegisterBenchmark("Max/library", maxLibrary)->Arg(n)->UseRealTime();
        registerReadLimit("Sum", n, n);
        registerReadLimit("Max", n, n);
    }
    return true;
}();

} // namespace

} // namespace Tervane::Math::Bench

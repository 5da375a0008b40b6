// Uniform random numbers against the standard generator and distribution, both with a fresh seed for each
// vector; the reference writes to memory that is there already.

#include "limits/Limits.h"

#include <Math/Random.h>

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

namespace Tervane::Math::Bench {

namespace {

void library(benchmark::State& state) {
    auto const n = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        Vector2 const values = Random::uniform(-1.0, 1.0, n);
        benchmark::DoNotOptimize(values.data());
        benchmark::ClobberMemory();
    }
}

void standard(benchmark::State& state) {
    std::vector<double> values(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        std::mt19937 generator(std::random_device{}());
        std::uniform_real_distribution<double> distribution(-1.0, 1.0);
        for (double& value : values)
            value = distribution(generator);
        benchmark::DoNotOptimize(values.data());
        benchmark::ClobberMemory();
    }
}

[[maybe_unused]] bool const registered = [] {
    for (auto const n : {1, 1000, 100'000}) {
        benchmark::RegisterBenchmark("Uniform/std", standard)->Arg(n)->UseRealTime();
        benchmark::RegisterBenchmark("Uniform/library", library)->Arg(n)->UseRealTime();
        registerLoopLimit("Uniform", "a", n);
    }
    return true;
}();

} // namespace

} // namespace Tervane::Math::Bench

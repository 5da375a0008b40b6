// 10,000 queries in a table of 1,000 points against a loop of the standard search and the standard
// interpolation, for queries in any order and for ascending ones, whose search a processor predicts well.

#include "functions/Inputs.h"

#include <Math/ExecutionPolicy.h>
#include <Math/Generators.h>
#include <Math/Interpolation.h>
#include <Math/Sorting.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Tervane::Math::Bench {

namespace {

constexpr std::size_t tableLength = 1'000;
constexpr std::size_t queryCount = 10'000;

Vector2 queries(bool ascending) {
    Vector2 x = uniformNumbers(queryCount, -0.01, 1.01, 2);
    return ascending ? sort(std::move(x)) : x;
}

void library(benchmark::State& state, AlgorithmExecutionPolicy policy, bool ascending) {
    Vector2 const xp = linspace(0.0, 1.0, tableLength);
    Vector2 const fp = uniformNumbers(tableLength, -1.0, 1.0);
    Vector2 const x = queries(ascending);
    setExecutionPolicy(policy);
    for (auto _ : state) {
        Vector2 const y = interp(x, xp, fp);
        benchmark::DoNotOptimize(y.data());
        benchmark::ClobberMemory();
    }
    setExecutionPolicy(ParallelUnsequenced);
}

void standardLoop(benchmark::State& state, bool ascending) {
    Vector2 const xp = linspace(0.0, 1.0, tableLength);
    Vector2 const fp = uniformNumbers(tableLength, -1.0, 1.0);
    Vector2 const x = queries(ascending);
    Vector2 y(queryCount);
    double const* const first = xp.data();
    double const* const last = first + tableLength;
    for (auto _ : state) {
        for (std::size_t i = 0; i < queryCount; ++i) {
            double const* const found = std::lower_bound(first, last, x[i]);
            auto const k = static_cast<std::size_t>(found - first);
            if (found == last)
                y[i] = fp[tableLength - 1];
            else if (k == 0)
                y[i] = fp[0];
            else
                y[i] = std::lerp(fp[k - 1], fp[k], (x[i] - xp[k - 1]) / (xp[k] - xp[k - 1]));
        }
        benchmark::DoNotOptimize(y.data());
        benchmark::ClobberMemory();
    }
}

[[maybe_unused]] bool const registered = [] {
    auto const add = [](char const* name, auto... run) {
        benchmark::RegisterBenchmark(name, run...)->Arg(queryCount)->UseRealTime();
    };
    add("Interp/std", standardLoop, false);
    add("Interp/inline", library, Inline, false);
    add("Interp/default", library, ParallelUnsequenced, false);
    add("Interp ascending/std", standardLoop, true);
    add("Interp ascending/inline", library, Inline, true);
    add("Interp ascending/default", library, ParallelUnsequenced, true);
    return true;
}();

} // namespace

} // namespace Tervane::Math::Bench

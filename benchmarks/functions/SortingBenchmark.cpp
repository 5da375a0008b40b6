// The sort of an lvalue against a copy and std::sort.

#include "functions/Inputs.h"
#include "limits/Limits.h"

#include <Math/Sorting.h>

#include <benchmark/benchmark.h>

#include <algorithm>

namespace Tervane::Math::Bench {

namespace {

void library(benchmark::State& state) {
    Vector2 const x = uniformNumbers(static_cast<std::size_t>(state.range(0)), -1.0, 1.0);
    for (auto _ : state) {
        Vector2 const y = sort(x);
        benchmark::DoNotOptimize(y.data());
        benchmark::ClobberMemory();
    }
}

void standard(benchmark::State& state) {
    Vector2 const x = uniformNumbers(static_cast<std::size_t>(state.range(0)), -1.0, 1.0);
    for (auto _ : state) {
        Vector2 y(x);
        std::sort(y.data(), y.data() + y.length());
        benchmark::DoNotOptimize(y.data());
        benchmark::ClobberMemory();
    }
}

[[maybe_unused]] bool const registered = [] {
    for (auto const n : {16, 64, 256, 1'024, 4'096, 16'384, 65'536, 1'000'000}) {
        benchmark::RegisterBenchmark("Sort/std", standard)->Arg(n)->UseRealTime();
        benchmark::RegisterBenchmark("Sort/library", library)->Arg(n)->UseRealTime();
        registerLoopLimit("Sort", "a", n);
    }
    return true;
}();

} // namespace

} // namespace Tervane::Math::Bench

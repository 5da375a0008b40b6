// What the dispatch costs: an addition, which is bound by memory, and a sine, which is not, beside a plain
// loop compiled for the same instruction sets. The inline path is to stay within 5 % of the loop from 64
// elements up; the default policy is never to be more than 10 % slower than inline, and at least 1.6 times
// faster for a million elements.

#include "foundation/ElementwiseDispatch.h"
#include "foundation/Multiversion.h"
#include "foundation/Operations.h"

#include <Math/Detail/ElementArray.h>
#include <Math/ExecutionPolicy.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <string>

namespace {

using namespace Tervane::Math;
using Detail::RealArray;

struct Sine {
    static constexpr Detail::ElementCost cost = Detail::ElementCost::Function;
    double operator()(double x) const { return std::sin(x); }
};

TVNMATH_MULTIVERSION __attribute__((noinline)) static void
plainAdd(double const* __restrict a, double const* __restrict b, double* __restrict out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i)
        out[i] = a[i] + b[i];
}

__attribute__((noinline)) void plainSine(double const* in, double* out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i)
        out[i] = std::sin(in[i]);
}

template<class Run>
void measure(benchmark::State& state, Run const& run) {
    auto const n = static_cast<std::size_t>(state.range(0));
    RealArray const a(n, 1.5), b(n, 2.5);
    RealArray out(n);
    for (auto _ : state) {
        run(a, b, out);
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void addPlain(benchmark::State& state) {
    measure(state, [](RealArray const& a, RealArray const& b, RealArray& out) {
        plainAdd(a.data(), b.data(), out.data(), a.length());
    });
}

void sinePlain(benchmark::State& state) {
    measure(state, [](RealArray const& a, RealArray const& /*b*/, RealArray& out) {
        plainSine(a.data(), out.data(), a.length());
    });
}

void add(benchmark::State& state, AlgorithmExecutionPolicy policy) {
    setExecutionPolicy(policy);
    measure(state, [](RealArray const& a, RealArray const& b, RealArray& out) {
        ElementwiseDispatch::transform(a.begin(), a.end(), b.begin(), out.data(), Detail::Add());
    });
}

void sine(benchmark::State& state, AlgorithmExecutionPolicy policy) {
    setExecutionPolicy(policy);
    measure(state, [](RealArray const& a, RealArray const& /*b*/, RealArray& out) {
        ElementwiseDispatch::transform(a.begin(), a.end(), out.data(), Sine());
    });
}

[[maybe_unused]] bool const isRegistered = [] {
    for (long const n :
         {4, 16, 64, 256, 1'024, 4'096, 16'384, 32'768, 65'536, 262'144, 1'000'000, 4'000'000}) {
        benchmark::RegisterBenchmark("Add/limit", addPlain)->Arg(n)->UseRealTime();
        benchmark::RegisterBenchmark("Add/inline", add, Inline)->Arg(n)->UseRealTime();
        benchmark::RegisterBenchmark("Add/default", add, ParallelUnsequenced)->Arg(n)->UseRealTime();
        if (n > 262'144)
            continue;
        benchmark::RegisterBenchmark("Sine/limit", sinePlain)->Arg(n)->UseRealTime();
        benchmark::RegisterBenchmark("Sine/inline", sine, Inline)->Arg(n)->UseRealTime();
        benchmark::RegisterBenchmark("Sine/default", sine, ParallelUnsequenced)->Arg(n)->UseRealTime();
    }
    return true;
}();

} // namespace

// Element-wise functions against a plain loop over the scalar function, which writes to memory that is there
// already, which is what the machine can do; the library's figures contain the allocation of the result.

#include "functions/Inputs.h"

#include <Math/Elementwise.h>
#include <Math/ExecutionPolicy.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <string>

namespace Tervane::Math::Bench {

namespace {

struct Sin {
    static constexpr char const* name = "Sin";
    static Vector2 library(Vector2 const& x) { return sin(x); }
    static double scalar(double x) { return std::sin(x); }
};

struct Exp {
    static constexpr char const* name = "Exp";
    static Vector2 library(Vector2 const& x) { return exp(x); }
    static double scalar(double x) { return std::exp(x); }
};

struct Log10 {
    static constexpr char const* name = "Log10";
    static Vector2 library(Vector2 const& x) { return log10(x); }
    static double scalar(double x) { return std::log10(x); }
};

// A variable, or the compiler knows the exponent in the plain loop.
int volatile exponent = 3;

struct Pow {
    static constexpr char const* name = "Pow";
    static Vector2 library(Vector2 const& x) { return pow(x, exponent); }
    static double scalar(double x) { return std::pow(x, static_cast<double>(exponent)); }
};

struct Sqrt {
    static constexpr char const* name = "Sqrt";
    static Vector2 library(Vector2 const& x) { return sqrt(x); }
    static double scalar(double x) { return std::sqrt(x); }
};

struct Abs {
    static constexpr char const* name = "Abs";
    static Vector2 library(Vector2 const& x) { return abs(x); }
    static double scalar(double x) { return std::fabs(x); }
};

template<class Function>
void library(benchmark::State& state, AlgorithmExecutionPolicy policy) {
    auto const n = static_cast<std::size_t>(state.range(0));
    Vector2 const x = uniformNumbers(n, 0.1, 10.0);
    setExecutionPolicy(policy);
    for (auto _ : state) {
        Vector2 const y = Function::library(x);
        benchmark::DoNotOptimize(y.data());
        benchmark::ClobberMemory();
    }
    setExecutionPolicy(ParallelUnsequenced);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template<class Function>
void plainLoop(benchmark::State& state) {
    auto const n = static_cast<std::size_t>(state.range(0));
    Vector2 const x = uniformNumbers(n, 0.1, 10.0);
    Vector2 y(n);
    double const* const in = x.data();
    double* const out = y.data();
    for (auto _ : state) {
        for (std::size_t i = 0; i < n; ++i)
            out[i] = Function::scalar(in[i]);
        benchmark::DoNotOptimize(out);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template<class Function>
void registerAll() {
    std::string const name = Function::name;
    for (auto const n : {16, 256, 1024, 4096, 65'536}) {
        benchmark::RegisterBenchmark((name + "/limit").c_str(), plainLoop<Function>)->Arg(n)->UseRealTime();
        benchmark::RegisterBenchmark((name + "/inline").c_str(), library<Function>, Inline)
            ->Arg(n)
            ->UseRealTime();
        benchmark::RegisterBenchmark((name + "/default").c_str(), library<Function>, ParallelUnsequenced)
            ->Arg(n)
            ->UseRealTime();
    }
}

[[maybe_unused]] bool const registered = [] {
    registerAll<Sin>();
    registerAll<Exp>();
    registerAll<Log10>();
    registerAll<Pow>();
    registerAll<Sqrt>();
    registerAll<Abs>();
    return true;
}();

} // namespace

} // namespace Tervane::Math::Bench

// The containers' arithmetic beside Eigen's dynamic vectors, results allocated on both sides. A single
// operation is not to be slower than Eigen's by more than 10 % at any length, and from 100,000 elements to be
// ahead under the default policy.

#include "EigenReference.h"
#include "OtherReferences.h"
#include "limits/Limits.h"

#include <Math/ComplexVector2.h>
#include <Math/ExecutionPolicy.h>
#include <Math/Vector2.h>

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>

namespace {

using namespace Tervane::Math;

template<class Run>
void measure(benchmark::State& state, Run const& run) {
    auto const n = static_cast<std::size_t>(state.range(0));
    Vector2 const a(n, 1.5), b(n, 2.5);
    for (auto _ : state)
        run(a, b);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void use(auto& result) {
    benchmark::DoNotOptimize(result.data());
    benchmark::ClobberMemory();
}

void sum(benchmark::State& state) {
    measure(state, [](Vector2 const& a, Vector2 const& b) {
        Vector2 result = a + b;
        use(result);
    });
}

void sumOfThree(benchmark::State& state) {
    measure(state, [](Vector2 const& a, Vector2 const& b) {
        Vector2 result = a + b + a;
        use(result);
    });
}

void scaled(benchmark::State& state) {
    measure(state, [](Vector2 const& a, Vector2 const& /*b*/) {
        Vector2 result = a * 1.0001;
        use(result);
    });
}

void negated(benchmark::State& state) {
    measure(state, [](Vector2 const& a, Vector2 const& /*b*/) {
        Vector2 result = -a;
        use(result);
    });
}

void sumInPlace(benchmark::State& state) {
    auto const n = static_cast<std::size_t>(state.range(0));
    Vector2 a(n, 1.5);
    Vector2 const b(n, 1e-9);
    for (auto _ : state) {
        a += b;
        use(a);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void complexScaled(benchmark::State& state) {
    ComplexVector2 const z(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        ComplexVector2 result = z * 1.0001;
        use(result);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

using Benchmark = void (*)(benchmark::State&);

void registerSides(std::string const& subject, Benchmark library, Benchmark eigen, std::string const& loop,
                   Bench::LoopShape shape = {}) {
    for (long const n :
         {4, 16, 64, 256, 1'024, 4'096, 16'384, 65'536, 131'072, 1'000'000, 4'194'304, 8'000'000}) {
        benchmark::RegisterBenchmark((subject + "/eigen").c_str(), eigen)->Arg(n)->UseRealTime();
        OtherReferences::registerSides(subject, n);
        Bench::registerLoopLimit(subject, loop, n, shape);
        for (auto const& [side, policy] :
             {std::pair("inline", Inline), std::pair("default", ParallelUnsequenced)})
            benchmark::RegisterBenchmark((subject + "/" + side).c_str(),
                                         [library, policy = policy](benchmark::State& state) {
                                             setExecutionPolicy(policy);
                                             library(state);
                                         })
                ->Arg(n)
                ->UseRealTime();
    }
}

[[maybe_unused]] bool const isRegistered = [] {
    registerSides("a+b", sum, EigenReference::sum, "a+b");
    registerSides("a*s", scaled, EigenReference::scaled, "a*s");
    registerSides("a+=b", sumInPlace, EigenReference::sumInPlace, "a+b", {.isInPlace = true});
    registerSides("a+b+c", sumOfThree, EigenReference::sumOfThree, "a+b+a");
    registerSides("-a", negated, EigenReference::negated, "-a");
    registerSides("z*s", complexScaled, EigenReference::complexScaled, "a*s", {.doublesPerElement = 2});
    return true;
}();

} // namespace

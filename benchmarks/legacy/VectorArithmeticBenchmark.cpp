// The operators of both generations side by side. Names are operation/generation/length.
//
// They share their kernels. What the legacy generation has on top is a heap object for each fresh result, and
// calls of exported members where the current generation's are inline: a few nanoseconds in place, some
// twenty for a fresh result, whatever its length.

#include "containers/EigenReference.h"
#include "limits/Limits.h"

#include <Math/ComplexVector.h>
#include <Math/ComplexVector2.h>
#include <Math/Vector.h>
#include <Math/Vector2.h>

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

namespace {

using Tervane::Math::ComplexVector;
using Tervane::Math::ComplexVector2;
using Tervane::Math::Vector;
using Tervane::Math::Vector2;

void setThroughput(benchmark::State& state, std::size_t n) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(n));
}

/// A fresh result of two operands that stay.
template<class Container, class Operation>
void fresh(benchmark::State& state, Operation operation) {
    auto const n = static_cast<std::size_t>(state.range(0));
    Container const a(n, 1.5);
    Container const b(n, 2.5);
    for (auto _ : state) {
        auto result = operation(a, b);
        benchmark::DoNotOptimize(result.data());
    }
    setThroughput(state, n);
}

/// In the storage of an operand, again and again.
template<class Container, class Operation>
void reused(benchmark::State& state, Operation operation) {
    auto const n = static_cast<std::size_t>(state.range(0));
    Container a(n, 1.5);
    Container const b(n, 0.0);
    for (auto _ : state) {
        a = operation(std::move(a), b);
        benchmark::DoNotOptimize(a.data());
    }
    setThroughput(state, n);
}

/// Added to one vector again and again.
template<class Container>
void accumulated(benchmark::State& state) {
    auto const n = static_cast<std::size_t>(state.range(0));
    Container a(n, 1.5);
    Container const b(n, 0.0);
    for (auto _ : state) {
        a += b;
        benchmark::DoNotOptimize(a.data());
    }
    setThroughput(state, n);
}

template<class Container, class Operation>
void complexFresh(benchmark::State& state, Operation operation) {
    auto const n = static_cast<std::size_t>(state.range(0));
    Container const z(n);
    for (auto _ : state) {
        auto result = operation(z);
        benchmark::DoNotOptimize(result.data());
    }
    setThroughput(state, n);
}

constexpr long lengths[] = {4, 16, 64, 256, 1024, 4096, 16384, 65536, 1048576};

template<class Run>
void add(std::string const& name, Run const& run) {
    for (long const n : lengths)
        benchmark::RegisterBenchmark(name.c_str(), run)->Arg(n)->UseRealTime();
}

void addLimit(std::string const& subject, std::string const& expression,
              Tervane::Math::Bench::LoopShape shape = {}) {
    for (long const n : lengths)
        Tervane::Math::Bench::registerLoopLimit(subject, expression, n, shape);
}

// One operation written once, instantiated for either generation.
template<class V, class Z>
void addGeneration(std::string const& generation) {
    add("Product/" + generation,
        [](auto& state) { fresh<V>(state, [](V const& a, V const& b) { return a * b; }); });
    add("ScalarProduct/" + generation,
        [](auto& state) { fresh<V>(state, [](V const& a, V const&) { return a * 2.0; }); });
    add("ScalarDifference/" + generation,
        [](auto& state) { fresh<V>(state, [](V const& a, V const&) { return 1.0 - a; }); });
    add("ScalarQuotient/" + generation,
        [](auto& state) { fresh<V>(state, [](V const& a, V const&) { return a / 3.0; }); });
    add("Chain/" + generation,
        [](auto& state) { fresh<V>(state, [](V const& a, V const& b) { return a * b + b - a; }); });
    add("SumReused/" + generation,
        [](auto& state) { reused<V>(state, [](V&& a, V const& b) { return std::move(a) + b; }); });
    add("MinusReused/" + generation,
        [](auto& state) { reused<V>(state, [](V&& a, V const&) -> V { return -std::move(a); }); });
    add("PlusAssign/" + generation, [](auto& state) { accumulated<V>(state); });
    add("ComplexScalarProduct/" + generation,
        [](auto& state) { complexFresh<Z>(state, [](Z const& z) { return z * 2.0; }); });
}

int const registered = [] {
    addGeneration<Vector, ComplexVector>("legacy");
    addGeneration<Vector2, ComplexVector2>("current");
    add("Product/eigen", EigenReference::product);
    addLimit("Product", "a*b");
    addLimit("ScalarProduct", "a*s");
    addLimit("ScalarDifference", "s-a");
    addLimit("ScalarQuotient", "a/s");
    addLimit("Chain", "a*b+b-a");
    addLimit("SumReused", "a+b", {.isInPlace = true});
    addLimit("MinusReused", "-a", {.isInPlace = true});
    addLimit("PlusAssign", "a+b", {.isInPlace = true});
    addLimit("ComplexScalarProduct", "a*s", {.doublesPerElement = 2});
    return 0;
}();

} // namespace

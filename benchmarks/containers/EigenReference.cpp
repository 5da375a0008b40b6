#include "EigenReference.h"

#include <Eigen/Core>

namespace EigenReference {

namespace {

using Real = Eigen::VectorXd;
using Complex = Eigen::VectorXcd;

template<class Run>
void measure(benchmark::State& state, Run const& run) {
    Real const a = Real::Constant(state.range(0), 1.5);
    Real const b = Real::Constant(state.range(0), 2.5);
    for (auto _ : state)
        run(a, b);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

} // namespace

void sum(benchmark::State& state) {
    measure(state, [](Real const& a, Real const& b) {
        Real result = a + b;
        benchmark::DoNotOptimize(result.data());
        benchmark::ClobberMemory();
    });
}

void product(benchmark::State& state) {
    measure(state, [](Real const& a, Real const& b) {
        Real result = a.cwiseProduct(b);
        benchmark::DoNotOptimize(result.data());
        benchmark::ClobberMemory();
    });
}

void sumOfThree(benchmark::State& state) {
    measure(state, [](Real const& a, Real const& b) {
        Real result = a + b + a;
        benchmark::DoNotOptimize(result.data());
        benchmark::ClobberMemory();
    });
}

void scaled(benchmark::State& state) {
    measure(state, [](Real const& a, Real const& /*b*/) {
        Real result = a * 1.0001;
        benchmark::DoNotOptimize(result.data());
        benchmark::ClobberMemory();
    });
}

void negated(benchmark::State& state) {
    measure(state, [](Real const& a, Real const& /*b*/) {
        Real result = -a;
        benchmark::DoNotOptimize(result.data());
        benchmark::ClobberMemory();
    });
}

void sumInPlace(benchmark::State& state) {
    Real a = Real::Constant(state.range(0), 1.5);
    Real const b = Real::Constant(state.range(0), 1e-9);
    for (auto _ : state) {
        a += b;
        benchmark::DoNotOptimize(a.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void complexScaled(benchmark::State& state) {
    Complex const z = Complex::Constant(state.range(0), {1.5, -2.5});
    for (auto _ : state) {
        Complex result = z * 1.0001;
        benchmark::DoNotOptimize(result.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

} // namespace EigenReference

#pragma once

#include <benchmark/benchmark.h>

/// The same expressions on Eigen's dynamic vectors.
namespace EigenReference {

void sum(benchmark::State& state);
void sumInPlace(benchmark::State& state);
void product(benchmark::State& state);
void sumOfThree(benchmark::State& state);
void scaled(benchmark::State& state);
void negated(benchmark::State& state);
void complexScaled(benchmark::State& state);

} // namespace EigenReference

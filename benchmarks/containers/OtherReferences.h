#pragma once

#include <benchmark/benchmark.h>

#include <string>

/// The same expressions on other libraries' vectors.
namespace OtherReferences {

/// Registers the sides `armadillo` and `xtensor` of one subject, where there is such an expression.
void registerSides(std::string const& subject, long n);

} // namespace OtherReferences

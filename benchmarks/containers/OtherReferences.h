#pragma once

#include <benchmark/benchmark.h>

#include <string>

/// The same expressions on other libraries' vectors, and on storage that is there already, in one loop: what
/// the machine can do.
namespace OtherReferences {

/// Registers the sides `armadillo`, `xtensor` and `limit` of one subject, where there is such an expression.
void registerSides(std::string const& subject, long n);

} // namespace OtherReferences

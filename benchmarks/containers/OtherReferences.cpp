#include "OtherReferences.h"

// Its own expressions only; no BLAS is called, so none is linked.
#define ARMA_DONT_USE_WRAPPER
#define ARMA_DONT_USE_BLAS
#define ARMA_DONT_USE_LAPACK
#include <xtensor/xtensor.hpp>

#include <armadillo>
#include <cstddef>

namespace OtherReferences {

namespace {

template<class Vector, class Expression>
void measure(benchmark::State& state, Vector const& a, Vector const& b, Expression const& expression) {
    for (auto _ : state) {
        Vector result = expression(a, b);
        auto const* const elements = &result[0];
        benchmark::DoNotOptimize(elements);
        benchmark::ClobberMemory();
    }
}

void registerSide(std::string const& name, long n, auto const& run) {
    benchmark::RegisterBenchmark(name.c_str(), run)->Arg(n)->UseRealTime();
}

/// The expression returns a vector: what an expression template returns may refer to parts of it that are
/// gone.
void registerExpression(std::string const& subject, long n, auto const& expression) {
    registerSide(subject + "/armadillo", n, [expression](benchmark::State& state) {
        auto const length = static_cast<arma::uword>(state.range(0));
        arma::vec a(length), b(length);
        a.fill(1.5);
        b.fill(2.5);
        measure(state, a, b, expression);
    });
    registerSide(subject + "/xtensor", n, [expression](benchmark::State& state) {
        std::size_t const length[] = {static_cast<std::size_t>(state.range(0))};
        using Vector = xt::xtensor<double, 1>;
        Vector const a(Vector::shape_type{length[0]}, 1.5), b(Vector::shape_type{length[0]}, 2.5);
        measure(state, a, b, expression);
    });
}

} // namespace

void registerSides(std::string const& subject, long n) {
    if (subject == "a+b")
        registerExpression(subject, n, []<class V>(V const& a, V const& b) -> V { return a + b; });
    if (subject == "a*s")
        registerExpression(subject, n, []<class V>(V const& a, V const& /*b*/) -> V { return a * 1.0001; });
    if (subject == "a+b+c")
        registerExpression(subject, n, []<class V>(V const& a, V const& b) -> V { return a + b + a; });
    if (subject == "-a")
        registerExpression(subject, n, []<class V>(V const& a, V const& /*b*/) -> V { return -a; });
}

} // namespace OtherReferences

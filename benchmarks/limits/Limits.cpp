#include "limits/Limits.h"

#include "foundation/Multiversion.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <utility>
#include <vector>

namespace Tervane::Math::Bench {

namespace {

using Lanes __attribute__((vector_size(64))) = double;

/// `out[i]` from `a[i]` and `b[i]` in one loop; `out` may be `a`.
using Loop = void (*)(double const* a, double const* b, double* out, std::size_t n);

template<class Expression>
void loop(double const* a, double const* b, double* out, std::size_t n) {
    Expression const expression{};
    TVNMATH_INDEPENDENT_ITERATIONS
    for (std::size_t i = 0; i < n; ++i)
        out[i] = expression(a[i], b[i]);
}

using A = double;
using B = double;
constexpr double s = 1.0001;
template<class Expression>
constexpr Loop loopFor(Expression /*expression*/) {
    return loop<Expression>;
}

constexpr std::pair<char const*, Loop> loops[] = {
    {"a", loopFor([](A a, B) { return a; })},
    {"-a", loopFor([](A a, B) { return -a; })},
    {"a+b", loopFor([](A a, B b) { return a + b; })},
    {"a*b", loopFor([](A a, B b) { return a * b; })},
    {"a*s", loopFor([](A a, B) { return a * s; })},
    {"a/s", loopFor([](A a, B) { return a / s; })},
    {"s-a", loopFor([](A a, B) { return s - a; })},
    {"a+b+a", loopFor([](A a, B b) { return a + b + a; })},
    {"a*b+b-a", loopFor([](A a, B b) { return a * b + b - a; })},
};

Loop loopOf(std::string const& expression) {
    auto const* const found = std::find_if(std::begin(loops), std::end(loops),
                                           [&](auto const& known) { return expression == known.first; });
    if (found == std::end(loops)) {
        std::fprintf(stderr, "no loop for the expression %s\n", expression.c_str());
        std::exit(1);
    }
    return found->second;
}

/// As many running sums as hide the latency of an addition.
double read(double const* x, std::size_t n) {
    constexpr std::size_t sums = 8, lanes = sizeof(Lanes) / sizeof(double);
    std::array<Lanes, sums> running = {};
    std::size_t i = 0;
    for (; i + sums * lanes <= n; i += sums * lanes)
        for (std::size_t k = 0; k < sums; ++k) {
            Lanes next;
            std::memcpy(&next, x + i + k * lanes, sizeof next);
            running[k] += next;
        }
    for (; i + lanes <= n; i += lanes) {
        Lanes next;
        std::memcpy(&next, x + i, sizeof next);
        running[0] += next;
    }
    double total = 0.0;
    for (; i < n; ++i)
        total += x[i];
    for (std::size_t k = 1; k < sums; ++k)
        running[0] += running[k];
    for (std::size_t lane = 0; lane < lanes; ++lane)
        total += running[0][lane];
    return total;
}

/// Sixteen chains of multiplications and additions, each in a register: two units with a latency of four
/// are kept busy.
void multiplyAdd(double operations) {
    constexpr std::size_t chains = 16, lanes = sizeof(Lanes) / sizeof(double);
    std::array<Lanes, chains> x;
    Lanes const factor = Lanes{} + 0.999, summand = Lanes{} + 0.001;
    for (std::size_t k = 0; k < chains; ++k)
        x[k] = Lanes{} + static_cast<double>(k);
    auto const rounds = static_cast<long>(operations / (2.0 * chains * lanes));
    for (long round = 0; round < rounds; ++round)
        for (std::size_t k = 0; k < chains; ++k)
            x[k] = x[k] * factor + summand;
    benchmark::DoNotOptimize(x);
}

void add(std::string const& subject, long n, auto const& run, int threads = 1) {
    auto* const added =
        benchmark::RegisterBenchmark((subject + "/limit").c_str(), run)->Arg(n)->UseRealTime();
    if (threads > 1)
        added->Threads(threads);
}

} // namespace

void registerLoopLimit(std::string const& subject, std::string const& expression, long n, LoopShape shape) {
    auto const length = static_cast<std::size_t>(n * shape.doublesPerElement);
    add(subject, n, [length, shape, run = loopOf(expression)](benchmark::State& state) {
        std::vector<double> a(length, 1.5);
        std::vector<double> const b(length, 1e-9);
        std::vector<double> fresh(shape.isInPlace ? 0 : length);
        double* const out = shape.isInPlace ? a.data() : fresh.data();
        for (auto _ : state) {
            run(a.data(), b.data(), out, length);
            benchmark::DoNotOptimize(out);
            benchmark::ClobberMemory();
        }
    });
}

void registerReadLimit(std::string const& subject, long n, long doublesPerCall, double operationsPerCall) {
    auto const length = static_cast<std::size_t>(doublesPerCall);
    add(subject, n, [length, operationsPerCall](benchmark::State& state) {
        std::vector<double> x(length, 1.5);
        for (auto _ : state) {
            double* elements = x.data();
            benchmark::DoNotOptimize(elements);
            benchmark::ClobberMemory();
            double total = read(elements, length);
            benchmark::DoNotOptimize(total);
        }
        if (operationsPerCall > 0.0)
            state.counters["operations"] = operationsPerCall;
    });
}

void registerArithmeticLimit(std::string const& subject, long n, double operationsPerCall) {
    // Many calls' operations at a time, or short ones would measure the clock.
    auto const batch = static_cast<benchmark::IterationCount>(1.0 + 1e6 / operationsPerCall);
    add(
        subject, n,
        [batch, operationsPerCall](benchmark::State& state) {
            while (state.KeepRunningBatch(batch))
                multiplyAdd(static_cast<double>(batch) * operationsPerCall);
            state.counters["operations"] = {operationsPerCall, benchmark::Counter::kAvgThreads};
        },
        static_cast<int>(std::thread::hardware_concurrency()));
}

} // namespace Tervane::Math::Bench

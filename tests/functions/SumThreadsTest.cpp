// A sum under the parallel policies has the same bits in a process with one processor, in one that believes
// in any other number of them, and in a host that sets the runtime's threads. The runtime and the library
// look once, so each case is a child that begins anew; the parent uses neither.

#include "kit/Children.h"
#include "kit/Policies.h"
#include "kit/SpecialValues.h"

#include <Math/Reductions.h>
#include <Math/Vector2.h>

#include <gtest/gtest.h>

#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/task_arena.h>
#include <sched.h>

#include <bit>
#include <cinttypes>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace {

/// How many processors the C++ library is told of; 0: those that there are.
int believedProcessors = 0;

int allowedProcessors() {
    cpu_set_t allowed;
    return sched_getaffinity(0, sizeof allowed, &allowed) == 0 ? CPU_COUNT(&allowed) : 1;
}

} // namespace

// Stands before the C library's, whom the C++ library asks for std::thread::hardware_concurrency.
extern "C" __attribute__((visibility("default"))) int get_nprocs() noexcept;

int get_nprocs() noexcept {
    return believedProcessors != 0 ? believedProcessors : allowedProcessors();
}

namespace Tervane::Math {

namespace {

constexpr int failed = 1;

/// Prints the bits of sums on one thread and on several, in blocks of every kind: one and part of one, as
/// many as there may be at their shortest, longer ones.
int printSums() {
    for (std::size_t const n : {8'191, 8'193, 131'071, 131'072, 131'073, 200'000, 1'000'003, 256 * 8'192,
                                256 * 8'192 + 45, 3'000'001}) {
        std::vector<double> const values = TestKit::ordinaryValues(n);
        Vector2 const x(values.data(), n);
        for (AlgorithmExecutionPolicy const policy : {Parallel, ParallelUnsequenced}) {
            TestKit::PolicyScope const scope(policy);
            std::printf("%zu elements: %016" PRIx64 "\n", n, std::bit_cast<std::uint64_t>(sum(x)));
        }
    }
    return 0;
}

/// What a child prints that calls `body`, which is to end with printSums().
std::string sumsOf(std::function<int()> const& body) {
    auto const outcome = TestKit::runInChild(body, 60);
    EXPECT_EQ(outcome.exitCode, 0) << describe(outcome);
    return outcome.printed;
}

std::string const& sumsAsThingsAre() {
    static std::string const sums = sumsOf(printSums);
    return sums;
}

constexpr int threadCounts[] = {1, 2, 5, 64};

TEST(SumThreads, OneProcessorGivesTheSameBits) {
    auto const onOne = [] {
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(static_cast<std::size_t>(sched_getcpu()), &one);
        bool const isInForce =
            sched_setaffinity(0, sizeof one, &one) == 0 && std::thread::hardware_concurrency() == 1;
        return isInForce ? printSums() : failed;
    };
    EXPECT_EQ(sumsOf(onOne), sumsAsThingsAre());
}

TEST(SumThreads, AnyNumberOfProcessorsGivesTheSameBits) {
    for (int const processors : threadCounts) {
        auto const believing = [=] {
            believedProcessors = processors;
            bool const isInForce = std::thread::hardware_concurrency() == static_cast<unsigned>(processors);
            return isInForce ? printSums() : failed;
        };
        EXPECT_EQ(sumsOf(believing), sumsAsThingsAre()) << processors << " processors";
    }
}

TEST(SumThreads, HostsThatLimitTheRuntimeGetTheSameBits) {
    for (int const threads : threadCounts) {
        auto const limited = [limit = static_cast<std::size_t>(threads)] {
            auto const setting = tbb::global_control::max_allowed_parallelism;
            tbb::global_control const control(setting, limit);
            return tbb::global_control::active_value(setting) == limit ? printSums() : failed;
        };
        EXPECT_EQ(sumsOf(limited), sumsAsThingsAre()) << threads << " threads";
    }
}

TEST(SumThreads, HostsArenasGetTheSameBits) {
    for (int const threads : threadCounts) {
        auto const inArena = [=] {
            // The runtime warns of an arena that is larger than its limit.
            tbb::global_control const control(tbb::global_control::max_allowed_parallelism, 64);
            return tbb::task_arena(threads).execute(printSums);
        };
        EXPECT_EQ(sumsOf(inArena), sumsAsThingsAre()) << "an arena of " << threads << " threads";
    }
}

} // namespace

} // namespace Tervane::Math

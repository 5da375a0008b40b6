#include "foundation/ParallelFor.h"

#include "kit/Lengths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <initializer_list>
#include <new>
#include <thread>
#include <vector>

namespace Tervane::Math::Detail {

namespace {

constexpr AlgorithmExecutionPolicy parallelPolicies[] = {Parallel, ParallelUnsequenced};

TEST(ParallelFor, VisitsEveryElementOnceInChunksOfWholeCacheLines) {
    for (AlgorithmExecutionPolicy const policy : parallelPolicies)
        for (std::size_t const shortest : std::initializer_list<std::size_t>{1, 8, 100, 1000})
            for (std::size_t const n : TestKit::awkwardLengthsAround(10'000)) {
                std::vector<std::atomic<int>> visits(n);
                std::vector<std::atomic<int>> chunks(maximumChunks);
                std::size_t const count = parallelFor(
                    policy, n, shortest, [&](std::size_t chunk, std::size_t begin, std::size_t end) {
                        ++chunks[chunk];
                        EXPECT_EQ(begin % 8, 0u);
                        EXPECT_LT(begin, end);
                        for (std::size_t i = begin; i < end; ++i)
                            ++visits[i];
                    });
                EXPECT_LE(count, maximumChunks);
                EXPECT_TRUE(std::all_of(visits.begin(), visits.end(), [](auto const& v) { return v == 1; }))
                    << n;
                for (std::size_t chunk = 0; chunk < maximumChunks; ++chunk)
                    EXPECT_EQ(chunks[chunk], chunk < count ? 1 : 0) << n;
            }
}

TEST(ParallelFor, BeginsChunksAtMultiplesOfTheGranule) {
    for (std::size_t const granule : std::initializer_list<std::size_t>{8, 100, 1'024, 5'000, 20'000})
        for (AlgorithmExecutionPolicy const policy : parallelPolicies) {
            std::atomic<std::size_t> visited = 0;
            parallelFor(
                policy, 10'001, 8,
                [&](std::size_t /*chunk*/, std::size_t begin, std::size_t end) {
                    EXPECT_EQ(begin % granule, 0u);
                    EXPECT_TRUE(end % granule == 0 || end == 10'001);
                    visited += end - begin;
                },
                granule);
            EXPECT_EQ(visited, 10'001u);
        }
}

TEST(ParallelFor, GivesNoChunkLessThanTheShortestButTheLast) {
    parallelFor(Parallel, 10'000, 3'000, [](std::size_t /*chunk*/, std::size_t begin, std::size_t end) {
        EXPECT_TRUE(end - begin >= 3'000 || end == 10'000);
    });
}

// Nothing may be left out or done twice.
TEST(ParallelFor, FinishesOnTheCallingThreadWhatTheRuntimeDidNotRun) {
    auto const expectEveryElementOnce = [](auto const& spread) {
        std::vector<int> visits(10'000);
        std::size_t const count = runInChunks(
            visits.size(), 8, 8, 16,
            [&](std::size_t /*chunk*/, std::size_t begin, std::size_t end) {
                for (std::size_t i = begin; i < end; ++i)
                    ++visits[i];
            },
            spread);
        EXPECT_EQ(count, 16u);
        EXPECT_TRUE(std::all_of(visits.begin(), visits.end(), [](int v) { return v == 1; }));
    };
    expectEveryElementOnce([](std::size_t /*count*/, auto const& /*work*/) {});
    expectEveryElementOnce([](std::size_t /*count*/, auto const& /*work*/) { throw std::bad_alloc(); });
    expectEveryElementOnce([](std::size_t /*count*/, auto const& work) {
        std::thread other(work);
        other.join();
        throw std::bad_alloc();
    });
}

TEST(ParallelFor, LeavesWithTheExceptionThatOneThreadWouldHaveMet) {
    for (AlgorithmExecutionPolicy const policy : parallelPolicies) {
        std::vector<std::atomic<int>> visits(100'000);
        std::size_t failures = 0;
        try {
            parallelFor(policy, visits.size(), 1'000,
                        [&](std::size_t chunk, std::size_t begin, std::size_t end) {
                            for (std::size_t i = begin; i < end; ++i)
                                ++visits[i];
                            if (chunk != 0)
                                throw chunk;
                        });
        } catch (std::size_t chunk) {
            EXPECT_EQ(chunk, 1u);
            ++failures;
        }
        EXPECT_EQ(failures, std::thread::hardware_concurrency() > 1 ? 1u : 0u);
        EXPECT_TRUE(std::all_of(visits.begin(), visits.end(), [](auto const& v) { return v == 1; }));
    }
}

TEST(ParallelFor, LeavesWithTheExceptionOfTheFirstChunkWhenALaterOneFailsSooner) {
    std::atomic<bool> hasLaterOneFailed = false;
    std::size_t thrown = 0;
    try {
        runInChunks(
            32, 8, 8, 4,
            [&](std::size_t chunk, std::size_t /*begin*/, std::size_t /*end*/) {
                if (chunk == 3) // by the thread that is through with chunk 2
                    hasLaterOneFailed = true;
                while (chunk == 1 && !hasLaterOneFailed)
                    std::this_thread::yield();
                if (chunk != 0)
                    throw chunk;
            },
            [](std::size_t /*count*/, auto const& work) {
                std::thread other(work);
                work();
                other.join();
            });
    } catch (std::size_t chunk) {
        thrown = chunk;
    }
    EXPECT_EQ(thrown, 1u);
}

/// Writes where the frames of returned calls were: the thread sanitizer reports a race unless it knows that
/// other threads' accesses to them are over.
[[gnu::noinline]] void reuseStack() {
    std::array<char volatile, 16'384> bytes;
    for (char volatile& byte : bytes)
        byte = 0;
}

TEST(ParallelFor, LeavesWithAnExceptionOfAnotherThread) {
    if (std::thread::hardware_concurrency() < 2)
        GTEST_SKIP() << "this machine has one hardware thread";
    auto const caller = std::this_thread::get_id();
    for (int i = 0; i < 100; ++i) {
        std::atomic<bool> hasOtherCome = false;
        auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        auto const failOnOtherThread = [&](std::size_t chunk, std::size_t /*begin*/, std::size_t /*end*/) {
            if (std::this_thread::get_id() != caller) {
                hasOtherCome.store(true, std::memory_order_relaxed);
                throw chunk;
            }
            while (!hasOtherCome.load(std::memory_order_relaxed) && std::chrono::steady_clock::now() < end)
                std::this_thread::yield();
        };
        EXPECT_THROW(parallelFor(Parallel, 2'000, 100, failOnOtherThread), std::size_t);
        reuseStack();
    }
}

} // namespace

} // namespace Tervane::Math::Detail

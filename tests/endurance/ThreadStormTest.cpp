// Sixteen threads call everything on shared operands while the policy changes under them. The thread
// sanitizer watches in its build; every build checks that each result is the one that a single thread gets.

#include "endurance/Operations.h"
#include "kit/Bits.h"
#include "kit/Policies.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace Tervane::Math::Endurance {

namespace {

using Clock = std::chrono::steady_clock;

/// Calls everything from `threads` threads, each beginning at another operation, for `duration` but at least
/// once.
void storm(std::size_t n, std::size_t threads, Clock::duration duration) {
    TestKit::PolicyScope const scope(Inline); // the starting policy is back at the end
    std::vector<Operation> const operations = everyOperation(n);
    std::vector<std::vector<double>> expected;
    for (Operation const& operation : operations)
        expected.push_back(operation.run());

    std::atomic<bool> isOver = false;
    std::mutex mutex;
    std::vector<std::string> failures;
    auto const worker = [&](std::size_t first) {
        auto const end = Clock::now() + duration;
        do {
            for (std::size_t i = 0; i < operations.size(); ++i) {
                std::size_t const k = (first + i) % operations.size();
                std::vector<double> const result = operations[k].run();
                bool const isRight = operations[k].isReproducible
                                         ? bool(TestKit::sameBits(result, expected[k]))
                                         : result.size() == expected[k].size();
                if (!isRight) {
                    std::lock_guard const lock(mutex);
                    failures.push_back(operations[k].name);
                }
            }
        } while (Clock::now() < end);
    };
    std::jthread const changer([&] {
        for (std::size_t i = 0; !isOver; ++i) {
            setExecutionPolicy(TestKit::allPolicies[i % TestKit::allPolicies.size()]);
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        }
    });
    {
        std::vector<std::jthread> workers;
        for (std::size_t t = 0; t < threads; ++t)
            workers.emplace_back(worker, t * operations.size() / threads);
    }
    isOver = true;
    EXPECT_EQ(failures, std::vector<std::string>());
}

Clock::duration eachStorm() {
    return isLongForm() ? std::chrono::seconds(30) : std::chrono::milliseconds(500);
}

TEST(ThreadStorm, ShortVectorsFromSixteenThreads) {
    storm(50, 16, eachStorm());
}

// Long enough for the function kernels to leave the calling thread.
TEST(ThreadStorm, FunctionsSpreadFromSixteenThreads) {
    storm(3'000, 16, eachStorm());
}

// Long enough for every kernel to do so.
TEST(ThreadStorm, EverythingSpreadsFromSixteenThreads) {
    storm(40'000, 16, eachStorm());
}

} // namespace

} // namespace Tervane::Math::Endurance

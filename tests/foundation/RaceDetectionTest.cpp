// The thread sanitizer sees a race between the chunks of one range, and between a chunk and whoever does not
// wait for it: a child process has one and ends with the report. What the runtime hands over in order it does
// not report.

#include "foundation/ParallelFor.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <thread>
#include <utility>
#include <vector>

namespace Tervane::Math::Detail {

namespace {

// The sanitizer takes its time over every race that it sees.
constexpr std::size_t length = 2'000;
constexpr int exitCodeOfARace = 66;

class RaceDetectionDeathTest : public testing::Test {
protected:
    RaceDetectionDeathTest() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
};

/// Adds to one number from two threads. They wait for each other by relaxed accesses, which order nothing
/// else.
void countWithoutSynchronisation() {
    static thread_local bool hasCome = false;
    std::atomic<int> threads = 0;
    int count = 0;
    auto const end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    parallelFor(
        Parallel, length, 100, [&](std::size_t /*chunk*/, std::size_t /*first*/, std::size_t /*last*/) {
            if (!std::exchange(hasCome, true))
                threads.fetch_add(1, std::memory_order_relaxed);
            while (threads.load(std::memory_order_relaxed) < 2 && std::chrono::steady_clock::now() < end)
                std::this_thread::yield();
            count = count + 1;
        });
}

TEST_F(RaceDetectionDeathTest, SeesARaceBetweenTheChunksOfARange) {
    EXPECT_EXIT(
        {
            countWithoutSynchronisation();
            std::exit(0);
        },
        testing::ExitedWithCode(exitCodeOfARace), "data race");
}

TEST_F(RaceDetectionDeathTest, SeesARaceBetweenTwoRanges) {
    EXPECT_EXIT(
        {
            std::vector<double> shared(length);
            auto const fill = [&] {
                for (int i = 0; i < 10; ++i)
                    parallelFor(Parallel, length, 100,
                                [&](std::size_t /*chunk*/, std::size_t first, std::size_t last) {
                                    for (std::size_t k = first; k < last; ++k)
                                        shared[k] = 1.0;
                                });
            };
            std::thread other(fill);
            fill();
            other.join();
            std::exit(0);
        },
        testing::ExitedWithCode(exitCodeOfARace), "data race");
}

TEST(RaceDetection, AcceptsWhatIsHandedOverAndTakenBack) {
    std::vector<double> values(length);
    for (int i = 0; i < 100; ++i) {
        values[0] = i;
        parallelFor(ParallelUnsequenced, length, 100,
                    [&](std::size_t /*chunk*/, std::size_t first, std::size_t last) {
                        for (std::size_t k = first; k < last; ++k)
                            values[k] = values[k] + 1.0;
                    });
        EXPECT_EQ(values[0], i + 1.0);
        EXPECT_EQ(values[length - 1], i + 1.0);
    }
}

} // namespace

} // namespace Tervane::Math::Detail

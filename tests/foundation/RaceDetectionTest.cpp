// The thread sanitizer sees a race between the chunks of one range, and between a chunk and whoever does not
// wait for it: a child process has one and ends with the report. What the runtime hands over in order it does
// not report.

#include "foundation/ParallelFor.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <thread>
#include <vector>

namespace Tervane::Math::Detail {

namespace {

constexpr std::size_t length = 100'000;
constexpr int exitCodeOfARace = 66;

class RaceDetectionDeathTest : public testing::Test {
protected:
    RaceDetectionDeathTest() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
};

/// Ranges until chunks have met, since a machine may run a short one on one thread.
void countWithoutSynchronisation() {
    std::size_t count = 0;
    for (int i = 0; i < 200; ++i)
        parallelFor(Parallel, length, 100, [&](std::size_t /*chunk*/, std::size_t first, std::size_t last) {
            for (std::size_t k = first; k < last; ++k)
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
                for (int i = 0; i < 50; ++i)
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

#include "foundation/ThreadProbe.h"

#include "kit/Allocations.h"
#include "kit/Children.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <cstddef>

namespace Tervane::Math::Detail {

namespace {

constexpr std::size_t mebibyte = std::size_t{1} << 20;

TEST(ThreadProbe, FindsThreadsThatCanBeHad) {
    for (std::size_t const count : {0, 1, 2, 7})
        for (std::size_t const stackBytes : {std::size_t{0}, mebibyte, 16 * mebibyte})
            EXPECT_TRUE(threadsCanBeHad(count, stackBytes)) << count << " of " << stackBytes;
}

TEST(ThreadProbe, FindsThatStacksAreTooLarge) {
    EXPECT_FALSE(threadsCanBeHad(1, std::size_t{1} << 50));
}

// One stack fits, and so would one after the other.
TEST(ThreadProbe, CountsThreadsThatThereAreAtTheSameTime) {
    if (!TestKit::FailingAllocations::areSupported())
        GTEST_SKIP() << "the sanitizers take address space themselves";
    auto const outcome = TestKit::runInChild([] {
        rlimit limit{};
        limit.rlim_cur = limit.rlim_max = rlim_t{12} << 30;
        setrlimit(RLIMIT_AS, &limit);
        constexpr std::size_t stackBytes = std::size_t{4} << 30;
        return threadsCanBeHad(1, stackBytes) && !threadsCanBeHad(4, stackBytes) ? 0 : 1;
    });
    EXPECT_TRUE(outcome.isClean()) << TestKit::describe(outcome);
}

} // namespace

} // namespace Tervane::Math::Detail

#include "functions/KeySort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <random>
#include <vector>

namespace Tervane::Math::Detail {

namespace {

// The standard sort has the same results, so nothing but the time would tell that it is missing.
TEST(KeySort, IsThereWhereTheProcessorHasItsInstructions) {
    __builtin_cpu_init();
    bool const hasAVX2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi")
                         && __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("fma");
    EXPECT_EQ(canSortKeys(), hasAVX2);
}

TEST(KeySort, SortsLikeTheStandardSort) {
    if (!canSortKeys())
        GTEST_SKIP() << "this machine has no instruction set for it";
    std::mt19937_64 generator(11);
    for (std::size_t const n : std::initializer_list<std::size_t>{0, 1, 2, 7, 64, 129, 1'000, 100'000}) {
        std::vector<std::int64_t> keys(n);
        std::generate(keys.begin(), keys.end(), [&] { return static_cast<std::int64_t>(generator()); });
        std::vector<std::int64_t> expected = keys;
        std::sort(expected.begin(), expected.end());
        sortKeys(keys.data(), n);
        EXPECT_EQ(keys, expected) << n;
    }
}

} // namespace

} // namespace Tervane::Math::Detail

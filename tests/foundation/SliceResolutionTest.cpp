#include "foundation/SliceResolution.h"

#include "kit/SliceReference.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <vector>

namespace Tervane::Math::Detail {

namespace {

std::vector<long> selected(int start, int stop, int step, std::size_t n) {
    ResolvedSlice const slice = resolveSlice(makeSlice(start, stop, step), n);
    std::vector<long> positions;
    for (std::size_t k = 0; k < slice.count; ++k)
        positions.push_back(static_cast<long>(slice.position(k)));
    return positions;
}

using Positions = std::vector<long>;

TEST(SliceResolution, AgreesWithTheRulesOnAnExhaustiveGrid) {
    for (int n = 0; n <= 12; ++n)
        for (int start = -16; start <= 16; ++start)
            for (int stop = -16; stop <= 16; ++stop)
                for (int step = -14; step <= 14; ++step) {
                    if (step != 0) {
                        ASSERT_EQ(selected(start, stop, step, static_cast<std::size_t>(n)),
                                  TestKit::slicePositions(start, stop, step, n))
                            << "(" << start << ", " << stop << ", " << step << ") of " << n;
                    }
                }
}

TEST(SliceResolution, CountsFromTheEnd) {
    EXPECT_EQ(selected(-3, 10, 1, 10), (Positions{7, 8, 9}));
}

TEST(SliceResolution, WalksBackward) {
    EXPECT_EQ(selected(8, 2, -2, 10), (Positions{8, 6, 4}));
}

TEST(SliceResolution, DropsALastPartialStride) {
    EXPECT_EQ(selected(0, 100, 3, 10), (Positions{0, 3, 6}));
    EXPECT_EQ(selected(0, 10, 3, 10), (Positions{0, 3, 6}));
    EXPECT_EQ(selected(1, 10, 3, 10), (Positions{1, 4, 7}));
    EXPECT_EQ(selected(2, 8, 2, 10), (Positions{2, 4, 6}));
}

TEST(SliceResolution, SelectsNothingWhenTheStopIsBehind) {
    EXPECT_EQ(selected(5, 2, 1, 10), Positions{});
}

TEST(SliceResolution, StartsAtTheLastElementWhenBeyondAndBackward) {
    EXPECT_EQ(selected(9, 0, -1, 5), (Positions{4, 3, 2, 1}));
    EXPECT_EQ(selected(100, 0, -1, 6), (Positions{5, 4, 3, 2, 1}));
}

TEST(SliceResolution, ClampsTheStopByItsOwnSignAndNotByTheStep) {
    EXPECT_EQ(selected(0, -100, 1, 6), (Positions{0, 1, 2, 3, 4}));
    EXPECT_EQ(selected(0, 100, 1, 6), (Positions{0, 1, 2, 3, 4, 5}));
    EXPECT_EQ(selected(5, 100, -1, 6), Positions{});
}

TEST(SliceResolution, WrapsInThirtyTwoBits) {
    // The smallest distance divided by -1 does not fit; nothing may trap.
    EXPECT_EQ(resolveSlice(makeSlice(INT_MIN, INT_MAX, -1), 10).count, 0u);
    EXPECT_EQ(resolveSlice(makeSlice(INT_MAX, INT_MIN, -1), 10).count, 0u);
    EXPECT_EQ(resolveSlice(makeSlice(0, INT_MAX, INT_MAX), 10).count, 0u);
    EXPECT_EQ(resolveSlice(makeSlice(0, 3, 1), std::size_t{1} << 33).count, 3u);
}

} // namespace

} // namespace Tervane::Math::Detail

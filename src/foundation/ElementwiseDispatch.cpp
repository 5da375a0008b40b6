#include "foundation/ElementwiseDispatch.h"

#include "foundation/LaneReduction.h"

namespace Tervane::Math {

namespace {

using FourLanes __attribute__((vector_size(32), aligned(8), may_alias)) = double;

// The serial order (compatibility C12): one register of four lanes is the four running sums. Each addition
// waits for the one before, four cycles for four elements, so a sum takes a cycle for each element: the price
// of a fixed order.
TVNMATH_MULTIVERSION double sumInFourLanes(double const* values, std::size_t n) noexcept {
    double total = 0.0;
    std::size_t i = 0;
    if (n >= 4) {
        FourLanes lanes = {};
        for (; i + 4 <= n; i += 4)
            lanes += *reinterpret_cast<FourLanes const*>(values + i);
        total = 0.0 + ((lanes[0] + lanes[2]) + (lanes[1] + lanes[3]));
    }
    for (; i < n; ++i)
        total += values[i];
    return total;
}

struct AddTo {
    [[gnu::always_inline]] void operator()(auto& total, auto const& more) const noexcept {
        total = total + more;
    }
};

#define TVNMATH_SUM_OF_BLOCK(ATTRIBUTE, WIDTH)                                                               \
    ATTRIBUTE double sumOfBlock(double const* values, std::size_t n) noexcept {                              \
        return Detail::reduceInLanes<WIDTH>(values, n, 0.0, AddTo());                                        \
    }
TVNMATH_EACH_VERSION(TVNMATH_SUM_OF_BLOCK)
#undef TVNMATH_SUM_OF_BLOCK

// The blocks of a sum under the parallel policies depend on its length alone, so that it has the same bits
// whoever sums them. The shortest are worth handing to another thread; there are never more than can be kept
// without an allocation, which are enough to go round.
constexpr std::size_t shortestBlock = 8'192;
constexpr std::size_t mostBlocks = 256;

// A sum writes nothing and is over sooner than other work on as many elements: measured like the other
// limits.
constexpr std::size_t shortestParallelSum = 131'072;

std::size_t blockLengthFor(std::size_t n) noexcept {
    std::size_t length = shortestBlock;
    while (n > mostBlocks * length)
        length *= 2;
    return length;
}

// Neighbours first, then neighbours of these; an odd one waits for the next round.
double joinedInATree(double* sums, std::size_t count) noexcept {
    while (count > 1) {
        for (std::size_t pair = 0; pair < count / 2; ++pair)
            sums[pair] = sums[2 * pair] + sums[2 * pair + 1];
        if (count % 2 != 0)
            sums[count / 2] = sums[count - 1];
        count = (count + 1) / 2;
    }
    return sums[0];
}

// Apart from the sum of one block, which needs none of this room.
[[gnu::noinline]] double sumOfBlocks(AlgorithmExecutionPolicy policy, double const* first, std::size_t n) {
    std::size_t const length = blockLengthFor(n);
    std::array<double, mostBlocks> sums;
    auto const sumBlocks = [=, &sums](std::size_t /*chunk*/, std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; i += length)
            sums[i / length] = sumOfBlock(first + i, std::min(length, end - i));
    };
    if (n >= shortestParallelSum)
        Detail::parallelFor(policy, n, shortestBlock, sumBlocks, length);
    else
        sumBlocks(0, 0, n);
    return joinedInATree(sums.data(), (n + length - 1) / length);
}

} // namespace

double* ElementwiseDispatch::fill(double* first, double* last, double value) {
    auto const n = static_cast<std::size_t>(last - first);
    AlgorithmExecutionPolicy const policy = Detail::executionPolicy();
    if (isParallel(policy, Detail::ElementCost::Streaming, n))
        Detail::parallelFor(policy, n, Detail::shortestChunk(Detail::ElementCost::Streaming),
                            [=](std::size_t /*chunk*/, std::size_t begin, std::size_t end) {
                                std::fill(first + begin, first + end, value);
                            });
    else
        std::fill(first, last, value);
    return last;
}

double ElementwiseDispatch::sum(double const* first, double const* last) {
    auto const n = static_cast<std::size_t>(last - first);
    AlgorithmExecutionPolicy const policy = Detail::executionPolicy();
    if (policy != Parallel && policy != ParallelUnsequenced)
        return sumInFourLanes(first, n);
    return n <= shortestBlock ? sumOfBlock(first, n) : sumOfBlocks(policy, first, n);
}

} // namespace Tervane::Math

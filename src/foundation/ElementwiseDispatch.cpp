#include "foundation/ElementwiseDispatch.h"

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

// For the chunks of a parallel sum, whose order is not fixed: two additions a cycle of four cycles' latency
// are eight registers. Then memory is the bound.
TVNMATH_MULTIVERSION double sumInAnyOrder(double const* values, std::size_t n) noexcept {
    constexpr std::size_t registers = 8;
    constexpr std::size_t block = 4 * registers;
    FourLanes lanes[registers] = {};
    std::size_t i = 0;
    for (; i + block <= n; i += block)
        for (std::size_t r = 0; r < registers; ++r)
            lanes[r] += *reinterpret_cast<FourLanes const*>(values + i + 4 * r);
    FourLanes total = {};
    for (std::size_t r = 0; r < registers; ++r)
        total += lanes[r];
    return ((total[0] + total[2]) + (total[1] + total[3])) + sumInFourLanes(values + i, n - i);
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
    if (!isParallel(policy, Detail::ElementCost::Streaming, n))
        return sumInFourLanes(first, n);
    std::array<double, Detail::maximumChunks> partial;
    std::size_t const chunks =
        Detail::parallelFor(policy, n, Detail::shortestChunk(Detail::ElementCost::Streaming),
                            [first, &partial](std::size_t chunk, std::size_t begin, std::size_t end) {
                                partial[chunk] = sumInAnyOrder(first + begin, end - begin);
                            });
    return sumInFourLanes(partial.data(), chunks);
}

} // namespace Tervane::Math

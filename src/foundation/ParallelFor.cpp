#include "foundation/ParallelFor.h"

#include <algorithm>
#include <execution>
#include <thread>

namespace Tervane::Math::Detail {

namespace {

// A few chunks for each thread, so that one that starts late or shares its core does not hold up the others.
// A machine with one thread has nobody to share with.
std::size_t mostUsefulChunks() {
    static std::size_t const threads = std::thread::hardware_concurrency();
    return threads > 1 ? 4 * threads : 1;
}

} // namespace

std::size_t parallelFor(AlgorithmExecutionPolicy policy, std::size_t n, std::size_t shortestChunk,
                        ChunkBody body) {
    return runInChunks(n, shortestChunk, mostUsefulChunks(), body,
                       [policy](auto first, auto last, auto const& run) {
                           if (last - first < 2)
                               std::for_each(first, last, run);
                           else if (policy == Parallel)
                               std::for_each(std::execution::par, first, last, run);
                           else
                               std::for_each(std::execution::par_unseq, first, last, run);
                       });
}

} // namespace Tervane::Math::Detail

#include "foundation/ParallelFor.h"

#include <algorithm>
#include <array>
#include <execution>
#include <numeric>
#include <thread>

namespace Tervane::Math::Detail {

namespace {

// A few chunks for each thread, so that one that starts late or shares its core does not hold up the others.
constexpr std::size_t chunksPerThread = 4;

std::size_t hardwareThreads() {
    static std::size_t const threads = std::max(1U, std::thread::hardware_concurrency());
    return threads;
}

constexpr std::size_t roundUpToCacheLine(std::size_t elements) {
    return (elements + 7) / 8 * 8;
}

struct Chunk {
    std::size_t number;
    bool done;
};

} // namespace

std::size_t parallelFor(AlgorithmExecutionPolicy policy, std::size_t n, std::size_t shortestChunk,
                        ChunkBody body) {
    std::size_t const mostChunks =
        hardwareThreads() == 1 ? 1 : std::min(chunksPerThread * hardwareThreads(), maximumChunks);
    std::size_t const wanted =
        std::clamp<std::size_t>(n / std::max<std::size_t>(shortestChunk, 1), 1, mostChunks);
    std::size_t const chunkLength = std::max<std::size_t>(roundUpToCacheLine((n + wanted - 1) / wanted), 8);
    std::size_t const count = (n + chunkLength - 1) / chunkLength;

    std::array<Chunk, maximumChunks> chunks;
    for (std::size_t i = 0; i < count; ++i)
        chunks[i] = {i, false};
    auto const first = chunks.begin();
    auto const last = first + static_cast<std::ptrdiff_t>(count);
    auto const run = [=](Chunk& chunk) {
        std::size_t const begin = chunk.number * chunkLength;
        body(chunk.number, begin, std::min(begin + chunkLength, n));
        chunk.done = true;
    };
    try {
        if (count < 2)
            std::for_each(first, last, run);
        else if (policy == Parallel)
            std::for_each(std::execution::par, first, last, run);
        else
            std::for_each(std::execution::par_unseq, first, last, run);
    } catch (...) {
        // The body does not throw, so this is the runtime short of memory or threads. An element must not be
        // computed twice, in place least of all, so only the chunks that nobody has taken are left to do.
        for (auto chunk = first; chunk != last; ++chunk)
            if (!chunk->done)
                run(*chunk);
    }
    return count;
}

} // namespace Tervane::Math::Detail

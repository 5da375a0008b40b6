#pragma once

#include <Math/ExecutionPolicy.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <type_traits>

namespace Tervane::Math::Detail {

/// A reference to a callable `void(std::size_t chunk, std::size_t first, std::size_t last)` that must not
/// throw. It erases the type so that the parallel algorithms, which are slow to compile, are compiled once.
class ChunkBody {
public:
    template<class Body>
    requires(!std::is_same_v<std::remove_cvref_t<Body>, ChunkBody>) ChunkBody(Body const& body)
        : _body(std::addressof(body)),
          _call([](void const* b, std::size_t chunk, std::size_t first, std::size_t last) {
              (*static_cast<Body const*>(b))(chunk, first, last);
          }) {}

    void operator()(std::size_t chunk, std::size_t first, std::size_t last) const {
        _call(_body, chunk, first, last);
    }

private:
    void const* _body;
    void (*_call)(void const*, std::size_t, std::size_t, std::size_t);
};

/// The most chunks that one range is cut into.
inline constexpr std::size_t maximumChunks = 128;

/// Cuts the range [0, n) into at most `mostChunks` chunks of at least `shortestChunk` elements and runs
/// `body` once for each. Chunks begin at multiples of 8, so that no two of them share a cache line of
/// doubles.
///
/// `spread(first, last, run)` is to call run() on each element of [first, last), wherever and in whatever
/// order it likes. When it throws, what it has not run runs here.
///
/// @return the number of chunks that the range was cut into
template<class Spread>
std::size_t runInChunks(std::size_t n, std::size_t shortestChunk, std::size_t mostChunks, ChunkBody body,
                        Spread const& spread) {
    struct Chunk {
        std::size_t number;
        bool isDone;
    };
    std::size_t const atMost = std::clamp<std::size_t>(mostChunks, 1, maximumChunks);
    std::size_t const wanted =
        std::clamp<std::size_t>(n / std::max<std::size_t>(shortestChunk, 1), 1, atMost);
    std::size_t const evenShare = (n + wanted - 1) / wanted;
    std::size_t const chunkLength = std::max<std::size_t>((evenShare + 7) / 8 * 8, 8);
    std::size_t const count = (n + chunkLength - 1) / chunkLength;

    std::array<Chunk, maximumChunks> chunks;
    for (std::size_t i = 0; i < count; ++i)
        chunks[i] = {i, false};
    Chunk* const first = chunks.data();
    Chunk* const last = first + count;
    auto const run = [=](Chunk& chunk) {
        std::size_t const begin = chunk.number * chunkLength;
        body(chunk.number, begin, std::min(begin + chunkLength, n));
        chunk.isDone = true;
    };
    try {
        spread(first, last, run);
    } catch (...) {
        // The body does not throw, so this is a runtime short of memory or threads. No element may be
        // computed twice, in place least of all, so only what nobody has run is left to do.
        for (Chunk* chunk = first; chunk != last; ++chunk)
            if (!chunk->isDone)
                run(*chunk);
    }
    return count;
}

/// The same, spread over the machine's threads by the standard parallel algorithm of `policy`. When the
/// parallel runtime cannot get the resources it needs, what is left runs on the calling thread.
///
/// @param policy Parallel or ParallelUnsequenced
std::size_t parallelFor(AlgorithmExecutionPolicy policy, std::size_t n, std::size_t shortestChunk,
                        ChunkBody body);

} // namespace Tervane::Math::Detail

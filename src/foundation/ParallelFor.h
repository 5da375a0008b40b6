#pragma once

#include <Math/ExecutionPolicy.h>

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

/// Cuts the range [0, n) into chunks of at least `shortestChunk` elements and runs `body` once for each,
/// spread over the machine's threads by the standard parallel algorithm of `policy`. Chunks begin at
/// multiples of 8, so that no two of them share a cache line of doubles.
///
/// When the parallel runtime cannot get the resources it needs, what is left runs on the calling thread.
///
/// @param policy Parallel or ParallelUnsequenced
/// @return the number of chunks that the range was cut into, at most maximumChunks
std::size_t parallelFor(AlgorithmExecutionPolicy policy, std::size_t n, std::size_t shortestChunk,
                        ChunkBody body);

} // namespace Tervane::Math::Detail

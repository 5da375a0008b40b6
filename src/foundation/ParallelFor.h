#pragma once

#include "foundation/HandOver.h"

#include <Math/ExecutionPolicy.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <memory>
#include <mutex>
#include <new>
#include <type_traits>

namespace Tervane::Math::Detail {

/// A reference to a callable `void(std::size_t chunk, std::size_t first, std::size_t last)`. It erases the
/// type so that the parallel algorithms, which are slow to compile, are compiled once.
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

/// Keeps of the exceptions that chunks end with the one that a single thread, which runs them in their order,
/// would have met.
class FirstFailure {
public:
    /// To be called where the exception is handled.
    void note(std::size_t chunk) noexcept {
        std::lock_guard<std::mutex> const lock(_mutex);
        if (_exception == nullptr || chunk < _chunk) {
            _chunk = chunk;
            _exception = std::current_exception();
        }
    }

    void rethrow() const {
        if (_exception != nullptr)
            std::rethrow_exception(_exception);
    }

private:
    std::mutex _mutex;
    std::size_t _chunk = 0;
    std::exception_ptr _exception;
};

/// The most chunks that one range is cut into.
inline constexpr std::size_t maximumChunks = 128;

/// Cuts the range [0, n) into at most `mostChunks` chunks of at least `shortestChunk` elements and runs
/// `body` once for each. Chunks begin at multiples of `granule`; of 8, and no two of them share a cache line
/// of doubles.
///
/// `spread(count, work)` is to call work(), which does not throw, on as many threads as it likes, at most one
/// for each of the `count` chunks. Each of them takes the next chunk as long as there is one. What is left
/// when it returns or throws runs here, and no element is ever computed twice.
///
/// A chunk whose body throws ends there, and the others run all the same, since a parallel algorithm would
/// end the process.
///
/// @return the number of chunks that the range was cut into
/// @throws what the body threw for the first chunk, in their order, for which it did
template<class Spread>
std::size_t runInChunks(std::size_t n, std::size_t granule, std::size_t shortestChunk, std::size_t mostChunks,
                        ChunkBody body, Spread const& spread) {
    std::size_t const atMost = std::clamp<std::size_t>(mostChunks, 1, maximumChunks);
    std::size_t const wanted =
        std::clamp<std::size_t>(n / std::max<std::size_t>(shortestChunk, 1), 1, atMost);
    std::size_t const evenShare = (n + wanted - 1) / wanted;
    std::size_t const chunkLength = std::max((evenShare + granule - 1) / granule * granule, granule);
    std::size_t const count = (n + chunkLength - 1) / chunkLength;

    std::atomic<std::size_t> next{0};
    FirstFailure failure;
    {
        HandOver const handOver(&failure);
        auto const work = [=, &handOver, &next, &failure]() noexcept {
            HandOver::Share const share(handOver);
            for (std::size_t chunk = 0; (chunk = next.fetch_add(1, std::memory_order_relaxed)) < count;) {
                std::size_t const begin = chunk * chunkLength;
                try {
                    body(chunk, begin, std::min(begin + chunkLength, n));
                } catch (...) {
                    failure.note(chunk);
                }
            }
        };
        try {
            spread(count, work);
        } catch (std::bad_alloc const&) {
            // A runtime short of memory; what it ran is done.
        }
        work();
    }
    failure.rethrow();
    return count;
}

/// The same, spread over the machine's threads by the standard parallel algorithm of `policy`. When the
/// parallel runtime cannot get the resources it needs, what is left runs on the calling thread.
///
/// @param policy Parallel or ParallelUnsequenced
std::size_t parallelFor(AlgorithmExecutionPolicy policy, std::size_t n, std::size_t shortestChunk,
                        ChunkBody body, std::size_t granule = 8);

} // namespace Tervane::Math::Detail

#include "foundation/ParallelFor.h"

#include "foundation/FloatingPointEnvironment.h"
#include "foundation/ParallelRuntime.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <execution>
#include <thread>

namespace Tervane::Math::Detail {

namespace {

std::size_t hardwareThreads() {
    static std::size_t const threads = std::thread::hardware_concurrency();
    return threads;
}

// A few chunks for each thread, so that one that starts late or shares its core does not hold up the others.
// A machine with one thread has nobody to share with.
std::size_t mostUsefulChunks() {
    return hardwareThreads() > 1 ? 4 * hardwareThreads() : 1;
}

/// Lets others work as the thread would that makes this: in its floating-point environment, and with the
/// exceptions that they raise noted there when it ends. The runtime changes both on the way, on the calling
/// thread too.
class AsOneThread {
public:
    AsOneThread() noexcept = default;
    ~AsOneThread() { _environment.install(_raised); }

    AsOneThread(AsOneThread const&) = delete;
    AsOneThread& operator=(AsOneThread const&) = delete;

    template<class Work>
    void run(Work const& work) const {
        FloatingPointEnvironment::Borrowed const borrowed(_environment);
        work();
        _raised.fetch_or(borrowed.raisedExceptions(), std::memory_order_relaxed);
    }

private:
    FloatingPointEnvironment const _environment = FloatingPointEnvironment::ofThisThread();
    std::atomic<std::uint32_t> mutable _raised{FloatingPointEnvironment::raisedExceptions()};
};

} // namespace

std::size_t parallelFor(AlgorithmExecutionPolicy policy, std::size_t n, std::size_t shortestChunk,
                        ChunkBody body, std::size_t granule) {
    return runInChunks(n, granule, shortestChunk, mostUsefulChunks(), body,
                       [policy](std::size_t chunks, auto const& work) {
                           if (chunks < 2 || !parallelRuntimeIsReady())
                               return;
                           AsOneThread const caller;
                           auto const share = [&](char /*thread*/) {
                               caller.run(work);
                           };
                           std::array<char, maximumChunks> const threads{};
                           auto const last = threads.begin() + std::min(chunks, hardwareThreads());
                           if (policy == Parallel)
                               std::for_each(std::execution::par, threads.begin(), last, share);
                           else
                               std::for_each(std::execution::par_unseq, threads.begin(), last, share);
                       });
}

} // namespace Tervane::Math::Detail

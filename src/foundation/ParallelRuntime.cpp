#include "foundation/ParallelRuntime.h"

#include "foundation/ThreadProbe.h"

#include <System/Immortal.h>

#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/parallel_for.h>
#include <oneapi/tbb/partitioner.h>
#include <oneapi/tbb/task_arena.h>
#include <oneapi/tbb/task_group.h>
#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace Tervane::Math::Detail {

namespace {

// Far more than the runtime's start takes of each: 40 blocks of the heap, 76 without its own allocator, and 5
// MiB of address space beside the workers' stacks.
constexpr std::size_t blocksToStart = 128;
constexpr std::size_t blockBytes = 4096;
constexpr std::size_t bytesToStart = std::size_t{32} << 20;

std::size_t workerStackBytes() {
    return tbb::global_control::active_value(tbb::global_control::thread_stack_size);
}

bool addressSpaceCanBeHad(std::size_t bytes) {
    void* const p = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return p != MAP_FAILED && munmap(p, bytes) == 0;
}

bool blocksCanBeHad() {
    std::array<void*, blocksToStart> blocks;
    std::size_t taken = 0;
    for (; taken < blocks.size(); ++taken) {
        void* const volatile block =
            std::malloc(blockBytes); // volatile, or compilers see that it is of no use
        if (block == nullptr)
            break;
        blocks[taken] = block;
    }
    for (std::size_t i = 0; i < taken; ++i)
        std::free(blocks[i]);
    return taken == blocks.size();
}

// Threads that work on one call, the calling one included, as the process limits them now.
std::size_t concurrencyLimit() {
    return tbb::global_control::active_value(tbb::global_control::max_allowed_parallelism);
}

// The loop over n threads' shares cuts its range n - 1 times and takes two small objects each time, and one
// for itself.
std::size_t smallObjectsFor(std::size_t threads) {
    return 2 * threads;
}

// Lets this thread enter the runtime, and take from the heap what a loop will want: as many small objects,
// which the runtime keeps for the thread, and a queue.
void stockThisThread(std::size_t smallObjects) {
    // A group counts a task before there is one and would wait for it for ever, and a task that could not be
    // handed on is still in the queue: after a failure the group must stay.
    auto group = std::make_unique<tbb::task_group>();
    try {
        std::vector<tbb::task_handle> tasks(smallObjects);
        for (tbb::task_handle& task : tasks)
            task = group->defer([] {});
        group->run(std::move(tasks.front()));
        tasks.clear();
        group->wait();
    } catch (...) {
        static_cast<void>(group.release());
        throw;
    }
}

// A loop that is over only when each of its iterations has a thread of its own, so that all workers are
// there. A worker sleeps when it has no work and does not end as long as the runtime lives; the newest
// sleeper is the first to be woken. From then on no thread is started. Who is late has been started too, or
// is busy elsewhere: a host may use the same runtime.
//
// Returns whether every worker that came could be stocked.
bool letAllThreadsMeet(std::size_t count) {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::seconds patience{1};
    auto const deadline = Clock::now() + patience;
    std::atomic<std::size_t> arrived{0};
    std::atomic<bool> isOver{false};
    std::atomic<bool> isStocked{true};
    tbb::parallel_for(
        tbb::blocked_range<std::size_t>(0, count, 1),
        [&](tbb::blocked_range<std::size_t> const& /*iteration*/) {
            if (++arrived == count)
                isOver = true;
            while (!isOver) {
                if (Clock::now() > deadline)
                    isOver = true;
                std::this_thread::yield();
            }
            try {
                stockThisThread(smallObjectsFor(count));
            } catch (...) {
                isStocked = false;
            }
        },
        tbb::simple_partitioner());
    return isStocked;
}

// A caller may be in an arena of its host's that has no place for every thread. There they would wait for
// each other until their patience ends, and those that did not come would be started, or refused, by a
// later loop.
bool letAllThreadsMeetSomewhere(std::size_t count) {
    auto const places = static_cast<int>(count);
    if (tbb::this_task_arena::max_concurrency() >= places)
        return letAllThreadsMeet(count);
    return tbb::task_arena(places).execute([count] { return letAllThreadsMeet(count); });
}

enum class State : std::uint8_t {
    NotYet, ///< what it takes could not be had when it was last asked for
    Ready,
    Unusable ///< broken half-way, and not to be entered again
};

std::atomic<State> processState{State::NotYet};
std::atomic<std::size_t> startedThreads{0};
std::mutex startMutex;
std::uint32_t requests = 0; // while the process is not ready; behind startMutex

thread_local constinit State threadState = State::NotYet;

State startProcess() noexcept {
    bool isEntered = false;
    try {
        std::size_t const workers = std::max(std::thread::hardware_concurrency(), 1u) - 1;
        if (!blocksCanBeHad() || !addressSpaceCanBeHad(bytesToStart + workers * workerStackBytes())
            || !threadsCanBeHad(workers, workerStackBytes()))
            return State::NotYet;
        isEntered = true;
        // Without an arena that lives for ever the runtime would stop with the last thread that used it, and
        // start anew with the next.
        static System::detail::Immortal<tbb::task_arena> keepsRuntime;
        keepsRuntime.value.initialize();
        std::size_t const threads = concurrencyLimit();
        stockThisThread(smallObjectsFor(threads));
        if (!letAllThreadsMeetSomewhere(threads))
            return State::Unusable;
        startedThreads = threads;
        threadState = State::Ready;
        return State::Ready;
    } catch (...) {
        return isEntered ? State::Unusable : State::NotYet;
    }
}

State startThread() noexcept {
    if (!blocksCanBeHad())
        return State::NotYet;
    try {
        stockThisThread(smallObjectsFor(startedThreads));
        return State::Ready;
    } catch (...) {
        return State::Unusable;
    }
}

bool processIsReady() noexcept {
    // A host may lift the limit under which the workers were counted.
    auto const isReady = [] {
        return processState.load(std::memory_order_acquire) == State::Ready
               && concurrencyLimit() <= startedThreads.load(std::memory_order_relaxed);
    };
    if (isReady())
        return true;
    std::unique_lock<std::mutex> const lock(startMutex, std::try_to_lock);
    if (!lock.owns_lock() || processState == State::Unusable)
        return false;
    if (isReady())
        return true;
    // Asking costs more than a short operation: ask the 1st, 2nd, 4th, ... time, and then every 1,024th.
    ++requests;
    if (requests % 1024 != 0 && (requests & (requests - 1)) != 0)
        return false;
    processState = startProcess();
    if (processState == State::Ready)
        requests = 0;
    return processState == State::Ready;
}

} // namespace

bool parallelRuntimeIsReady() noexcept {
    if (!processIsReady())
        return false;
    if (threadState == State::NotYet)
        threadState = startThread();
    return threadState == State::Ready;
}

} // namespace Tervane::Math::Detail

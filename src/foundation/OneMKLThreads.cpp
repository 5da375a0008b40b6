#include "foundation/OneMKLThreads.h"

#include "foundation/ThreadProbe.h"

#include <mkl_service.h>
#include <pthread.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <thread>

#if defined(TVNMATH_ONEMKL_INTEL_THREAD) || defined(TVNMATH_ONEMKL_GNU_THREAD)

// What the OpenMP runtimes offer, both under the same names. Their header belongs to one compiler or another.
extern "C" {

int omp_in_parallel();
int omp_get_dynamic();
int omp_get_max_active_levels();
int omp_get_num_threads();
int omp_get_thread_limit();
void GOMP_parallel(void (*body)(void*), void* data, unsigned threads, unsigned flags);

#    if defined(TVNMATH_ONEMKL_INTEL_THREAD)
int kmp_get_blocktime();
void kmp_set_blocktime(int milliseconds);
std::size_t kmp_get_stacksize_s();
#    endif

// oneMKL asks this once, for a first call on one thread too, and the runtime's own answer starts the runtime.
// Hidden like everything of oneMKL's.
int omp_get_num_procs();
int omp_get_num_procs() {
    return static_cast<int>(std::thread::hardware_concurrency());
}

} // extern "C"

namespace Tervane::Math::Detail::OneMKL {

namespace {

/// More than the runtime was seen to take for itself and for each thread.
constexpr std::size_t runtimeMemory = std::size_t(4) << 20;
constexpr std::size_t memoryPerThread = std::size_t(1) << 18;

/// How many times this process is a child: a child of `fork` has none of its parent's threads.
std::atomic<unsigned> generation = 0;
std::atomic<bool> isTold = false;

/// The generation in which the calling thread's team was started.
constexpr unsigned never = ~0U;
thread_local constinit unsigned startedIn = never;

bool tellOfForks() noexcept {
    if (!isTold.load(std::memory_order_acquire)) {
        if (pthread_atfork(nullptr, nullptr, [] { generation.fetch_add(1); }) != 0)
            return false;
        isTold.store(true, std::memory_order_release);
    }
    return true;
}

bool hasMemory(std::size_t bytes) noexcept {
    void* volatile p = std::malloc(bytes); // volatile, or the compiler sees that nothing comes of it
    std::free(p);
    return p != nullptr;
}

/// The stack that the runtime gives to a thread of its own, 0 for the system's choice.
std::size_t stackSize() noexcept {
#    if defined(TVNMATH_ONEMKL_INTEL_THREAD)
    // A little is added for each thread's number.
    return kmp_get_stacksize_s() + (std::size_t(1) << 16);
#    else
    return 0;
#    endif
}

/// Whether the runtime makes every team as large as it is asked to. It does not where the host, or a variable
/// of the environment such as OMP_DYNAMIC, lets it adjust.
bool givesFullTeams() noexcept {
    return omp_get_dynamic() == 0 && omp_get_max_active_levels() > 0;
}

/// Lets the runtime start the calling thread's team, and says whether it has so many threads.
bool startTeam(std::size_t threads) noexcept {
    if (static_cast<std::size_t>(omp_get_thread_limit()) < threads)
        return false;
    std::atomic<int> size = 0;
    auto const tellSize = [](void* told) {
        static_cast<std::atomic<int>*>(told)->store(omp_get_num_threads(), std::memory_order_relaxed);
    };
    GOMP_parallel(tellSize, &size, static_cast<unsigned>(threads), 0);
    return static_cast<std::size_t>(size.load()) == threads;
}

/// Whether oneMKL may use its threads on behalf of the calling one. Starts them when they are not there yet.
bool hasTeam() noexcept {
    unsigned const now = generation.load(std::memory_order_relaxed);
    if (startedIn == now)
        return givesFullTeams();
#    if defined(TVNMATH_ONEMKL_GNU_THREAD)
    // GNU's runtime waits in a child for its parent's threads, for ever.
    if (now != 0)
        return false;
#    endif
    if (!hasMemory(runtimeMemory) || !tellOfForks())
        return false;
    // In the host's own parallel region oneMKL uses one thread.
    if (omp_in_parallel() != 0 || !givesFullTeams())
        return false;
    auto const threads = static_cast<std::size_t>(mkl_get_max_threads());
    if (threads < 2 || !hasMemory(threads * memoryPerThread) || !threadsCanBeHad(threads - 1, stackSize())
        || !startTeam(threads))
        return false;
    startedIn = now;
    return true;
}

#    if defined(TVNMATH_ONEMKL_INTEL_THREAD)
/// For how long a thread of the runtime's looks for more work before it sleeps, in milliseconds: as the
/// runtime has it when nobody says otherwise, and for a call of ours. At 200 a host that multiplies once a
/// second pays for a fifth of a core; at 0 a product of 64 rows takes 21 microseconds instead of 8, as the
/// threads must be woken for each.
constexpr int runtimesBlockTime = 200;
constexpr int blockTime = 1;
#    endif

} // namespace

ThreadUse::ThreadUse(bool mayBeSpread) noexcept : _isAlone(!mayBeSpread || !hasTeam()), _before(0) {
    if (_isAlone) {
        _before = mkl_set_num_threads_local(1);
        return;
    }
#    if defined(TVNMATH_ONEMKL_INTEL_THREAD)
    // The setting is the calling thread's, and the host may use the same runtime: it is put back.
    _before = kmp_get_blocktime();
    if (_before == runtimesBlockTime)
        kmp_set_blocktime(blockTime);
#    endif
}

ThreadUse::~ThreadUse() {
    if (_isAlone) {
        mkl_set_num_threads_local(_before);
        return;
    }
#    if defined(TVNMATH_ONEMKL_INTEL_THREAD)
    if (_before == runtimesBlockTime)
        kmp_set_blocktime(_before);
#    endif
}

} // namespace Tervane::Math::Detail::OneMKL

#else

namespace Tervane::Math::Detail::OneMKL {

ThreadUse::ThreadUse(bool /*mayBeSpread*/) noexcept : _isAlone(true), _before(0) {}
ThreadUse::~ThreadUse() = default;

} // namespace Tervane::Math::Detail::OneMKL

#endif

// What the parallel policies do in a process that cannot get memory or threads. Each case needs a process
// whose parallel runtime has not been started, so each is the exit of a child that begins anew.

#include "kit/Allocations.h"
#include "kit/Threads.h"

#include <Math/Math.h>

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/task_arena.h>
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/sysinfo.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <thread>

// These stand before the C library's, for oneTBB and the library too.
namespace {

std::atomic<int> threadsAllowed{1'000};
std::atomic<int> threadsAskedFor{0};
std::atomic<bool> isRuntimesAllocatorInstalled{true};
std::atomic<int> believedProcessors{0}; // 0: those that there are

} // namespace

extern "C" __attribute__((visibility("default"))) void* dlopen(char const* file, int mode) {
    using Open = void* (*)(char const*, int);
    static auto const open = reinterpret_cast<Open>(dlsym(RTLD_NEXT, "dlopen"));
    if (file != nullptr && std::strstr(file, "libtbbmalloc") != nullptr && !isRuntimesAllocatorInstalled)
        return nullptr;
    return open(file, mode);
}

extern "C" __attribute__((visibility("default"))) int
pthread_create(pthread_t* thread, pthread_attr_t const* attributes, void* (*routine)(void*), void* argument) {
    using Create = int (*)(pthread_t*, pthread_attr_t const*, void* (*)(void*), void*);
    static auto const create = reinterpret_cast<Create>(dlsym(RTLD_NEXT, "pthread_create"));
    ++threadsAskedFor;
    if (threadsAllowed.fetch_sub(1) <= 0)
        return EAGAIN;
    return create(thread, attributes, routine, argument);
}

// Whom the C++ library asks for std::thread::hardware_concurrency.
extern "C" __attribute__((visibility("default"))) int get_nprocs() noexcept;

int get_nprocs() noexcept {
    cpu_set_t allowed;
    if (believedProcessors != 0)
        return believedProcessors;
    return sched_getaffinity(0, sizeof allowed, &allowed) == 0 ? CPU_COUNT(&allowed) : 1;
}

#if defined(__SANITIZE_ADDRESS__)
extern "C" __attribute__((visibility("default"))) char const* __lsan_default_suppressions();

/// A task group that could not be handed on is never released, since it would wait for ever.
char const* __lsan_default_suppressions() {
    return "leak:stockThisThread\n";
}
#endif

namespace Tervane::Math {

namespace {

using TestKit::FaultyHeap;
using TestKit::threadsOfThisProcess;

// Both are long enough for several threads, the second short enough for very many operations.
constexpr std::size_t usualLength = 200'000;
constexpr std::size_t shortLength = 40'000;
constexpr unsigned timeLimitInSeconds = 60;

/// A sum that grows by one with every operation.
class Work {
public:
    explicit Work(AlgorithmExecutionPolicy policy, std::size_t length = usualLength) {
        setExecutionPolicy(Inline); // the vectors are made without the runtime
        _sum = Vector2(length, 0.0);
        _one = Vector2(length, 1.0);
        setExecutionPolicy(policy);
    }

    void operator()(int operations) {
        for (int i = 0; i < operations; ++i) {
            _sum += _one;
            ++_expected;
        }
    }

    bool isRight() const {
        return std::all_of(_sum.data(), _sum.data() + _sum.length(),
                           [this](double x) { return x == _expected; });
    }

private:
    Vector2 _sum, _one;
    double _expected = 0.0;
};

/// The runtime's threads beside those that the process had when this was made.
class Workers {
public:
    /// Whether there is one for each processor but the caller's, or soon will be. There may be more: where
    /// work comes while one goes to sleep, the runtime starts another.
    bool areThere() const {
        using Clock = std::chrono::steady_clock;
        auto const deadline = Clock::now() + std::chrono::seconds(10);
        auto const expected = _threadsBefore + sanitizersThreads + std::thread::hardware_concurrency() - 1;
        while (threadsOfThisProcess() < expected) {
            if (Clock::now() > deadline)
                return false;
            std::this_thread::yield();
        }
        return true;
    }

private:
#if defined(__SANITIZE_THREAD__)
    static constexpr std::size_t sanitizersThreads = 1; // starts with the first of the others
#else
    static constexpr std::size_t sanitizersThreads = 0;
#endif

    std::size_t _threadsBefore = threadsOfThisProcess();
};

/// Whether a fault may cost the process its parallel runtime for good, because it can come when the runtime
/// has begun to start.
enum class Loss { OfNothing, OfTheRuntime };

/// Three operations in the middle of a fault, and three, here and on another thread, when it is over.
template<class Fault, class... Arguments>
void exitAfterWorkDuring(AlgorithmExecutionPolicy policy, Loss loss, Arguments... arguments) {
    alarm(timeLimitInSeconds);
    Work work(policy);
    Workers const workers;
    {
        Fault const fault(arguments...);
        work(3);
    }
    work(3);
    std::thread([&] { work(3); }).join();
    std::exit(work.isRight() && (loss == Loss::OfTheRuntime || workers.areThere()) ? EXIT_SUCCESS
                                                                                   : EXIT_FAILURE);
}

/// The same where the runtime has been started, with a thread that has never used it.
template<class Fault, class... Arguments>
void exitAfterWorkOfANewThreadDuring(AlgorithmExecutionPolicy policy, Arguments... arguments) {
    alarm(timeLimitInSeconds);
    Work work(policy);
    work(3);
    std::atomic<bool> mayGo = false;
    std::thread other([&] {
        while (!mayGo)
            std::this_thread::yield();
        work(3);
    });
    {
        Fault const fault(arguments...);
        work(3);
        mayGo = true;
        other.join();
    }
    work(3);
    std::exit(work.isRight() ? EXIT_SUCCESS : EXIT_FAILURE);
}

class AddressSpaceLimit {
public:
    explicit AddressSpaceLimit(std::size_t spareBytes) {
        getrlimit(RLIMIT_AS, &_former);
        std::size_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        rlimit limit = _former;
        limit.rlim_cur = pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) + spareBytes;
        setrlimit(RLIMIT_AS, &limit);
    }
    ~AddressSpaceLimit() { setrlimit(RLIMIT_AS, &_former); }

    AddressSpaceLimit(AddressSpaceLimit const&) = delete;
    AddressSpaceLimit& operator=(AddressSpaceLimit const&) = delete;

private:
    rlimit _former{};
};

class ThreadLimit {
public:
    explicit ThreadLimit(int threads) { threadsAllowed = threads; }
    ~ThreadLimit() { threadsAllowed = 1'000; }

    ThreadLimit(ThreadLimit const&) = delete;
    ThreadLimit& operator=(ThreadLimit const&) = delete;
};

/// The same where the host calls from an arena of its own without a place for a second thread, and no thread
/// is to be had afterwards.
void exitAfterWorkInASmallArena(AlgorithmExecutionPolicy policy) {
    alarm(timeLimitInSeconds);
    Work work(policy);
    tbb::task_arena(1).execute([&] { work(3); });
    {
        ThreadLimit const fault(0);
        work(3);
    }
    work(3);
    std::exit(work.isRight() ? EXIT_SUCCESS : EXIT_FAILURE);
}

bool otherThreadsSleep() {
    for (auto const& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream file(task.path() / "stat"); // number (name) state ...
        std::string const stat(std::istreambuf_iterator<char>(file), {});
        std::size_t const nameEnd = stat.rfind(')');
        if (nameEnd != std::string::npos && stat.substr(nameEnd + 2, 1) != "S"
            && task.path().filename() != std::to_string(gettid()))
            return false;
    }
    return true;
}

// Until threads that have no work sleep, or have ended where nothing keeps them. On a busy machine that can
// take long, and until then the runtime may start more of them by itself.
void letThreadsRest() {
    for (int looks = 0; looks < 20; looks = otherThreadsSleep() ? looks + 1 : 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

/// The same where the host allows the runtime more threads than there were at its start.
void exitAfterWorkUnderALiftedLimit(AlgorithmExecutionPolicy policy) {
    alarm(timeLimitInSeconds);
    believedProcessors = 8;
    constexpr auto setting = tbb::global_control::max_allowed_parallelism;
    tbb::global_control const later(setting, 8);
    tbb::task_arena arena(8);
    Work work(policy);
    Workers const workers;
    {
        tbb::global_control const first(setting, 2);
        arena.execute([&] { work(3); });
        letThreadsRest();
    }
    arena.execute([&] {
        {
            ThreadLimit const fault(0);
            work(3);
        }
        work(3);
    });
    std::exit(work.isRight() && workers.areThere() ? EXIT_SUCCESS : EXIT_FAILURE);
}

/// Work without the heap where there are so many threads that not only the calling one hands shares on.
void exitAfterWorkOfManyThreadsWithoutAllocations(AlgorithmExecutionPolicy policy) {
    alarm(timeLimitInSeconds);
    believedProcessors = 8;
    tbb::global_control const limit(tbb::global_control::max_allowed_parallelism, 8);
    Work work(policy);
    tbb::task_arena arena(8);
    arena.execute([&] {
        work(3);
        FaultyHeap const fault(1, FaultyHeap::Faults::AllFromThere);
        work(1'000);
    });
    std::exit(work.isRight() ? EXIT_SUCCESS : EXIT_FAILURE);
}

/// Work on a thread that ends, and then on this one, for which no thread is to be started.
void exitAfterWorkOfOneThreadAfterTheOther(AlgorithmExecutionPolicy policy) {
    alarm(timeLimitInSeconds);
    Work work(policy);
    Workers const workers;
    std::thread([&] { work(1); }).join();
    letThreadsRest();
    bool const areKept = workers.areThere();
    threadsAskedFor = 0;
    work(3);
    std::exit(work.isRight() && areKept && threadsAskedFor == 0 ? EXIT_SUCCESS : EXIT_FAILURE);
}

/// So many operations while no thread is to be had.
void exitWithTheNumberOfThreadsAskedForDuring(int operations, AlgorithmExecutionPolicy policy) {
    alarm(timeLimitInSeconds);
    Work work(policy, shortLength);
    ThreadLimit const fault(0);
    threadsAskedFor = 0;
    work(operations);
    std::exit(work.isRight() ? threadsAskedFor.load() : -1);
}

class ParallelRuntime : public testing::TestWithParam<AlgorithmExecutionPolicy> {
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

using testing::ExitedWithCode;

// So many blocks are asked for before a thread enters the runtime. Those that follow are the runtime's own.
constexpr std::size_t blocksAskedFor = 128;

/// Lets the allocations from `first` to `last` fail one by one, and all from there on, while `exitAfterWork`
/// is at work.
void expectSuccessWithoutAllocations(
    std::size_t first, std::size_t last,
    std::function<void(std::size_t, FaultyHeap::Faults)> const& exitAfterWork) {
    for (std::size_t n = first; n <= last; ++n)
        for (auto const faults : {FaultyHeap::Faults::One, FaultyHeap::Faults::AllFromThere}) {
            EXPECT_EXIT(exitAfterWork(n, faults), ExitedWithCode(EXIT_SUCCESS), "")
                << "allocation " << n << (faults == FaultyHeap::Faults::One ? "" : " and all that follow");
            if (testing::Test::HasFailure())
                return; // each that hangs would take its minute
        }
}

void expectWorkIsDoneWithoutAllocations(AlgorithmExecutionPolicy policy) {
    auto const exitAfterWork = [=](std::size_t n, FaultyHeap::Faults faults) {
        exitAfterWorkDuring<FaultyHeap>(policy, n <= blocksAskedFor ? Loss::OfNothing : Loss::OfTheRuntime, n,
                                        faults);
    };
    // Ten of the runtime's own break its start in the middle. Of later ones some end the process: the 13th is
    // for a message of the C library's, and what the workers take is taken where nobody catches anything.
    expectSuccessWithoutAllocations(1, 60, exitAfterWork);
    expectSuccessWithoutAllocations(blocksAskedFor - 1, blocksAskedFor + 10, exitAfterWork);
}

/// The same for allocations of a thread that has never used the runtime.
void expectWorkOfANewThreadIsDoneWithoutAllocations(AlgorithmExecutionPolicy policy) {
    auto const exitAfterWork = [=](std::size_t n, FaultyHeap::Faults faults) {
        exitAfterWorkOfANewThreadDuring<FaultyHeap>(policy, n, faults);
    };
    expectSuccessWithoutAllocations(1, 3, exitAfterWork);
    expectSuccessWithoutAllocations(blocksAskedFor - 1, blocksAskedFor + 50, exitAfterWork);
}

TEST_P(ParallelRuntime, IsDoneWithoutWhenAnAllocationFails) {
    if (!FaultyHeap::isSupported())
        GTEST_SKIP() << "the sanitizers' heap cannot be made to fail";
    expectWorkIsDoneWithoutAllocations(GetParam());
}

TEST_P(ParallelRuntime, IsDoneWithoutWhenAnAllocationOfANewThreadFails) {
    if (!FaultyHeap::isSupported())
        GTEST_SKIP() << "the sanitizers' heap cannot be made to fail";
    expectWorkOfANewThreadIsDoneWithoutAllocations(GetParam());
}

// The runtime then takes everything from the heap.
TEST_P(ParallelRuntime, IsDoneWithoutWhenAnAllocationFailsWhereItHasNoAllocatorOfItsOwn) {
    if (!FaultyHeap::isSupported())
        GTEST_SKIP() << "the sanitizers' heap cannot be made to fail";
    isRuntimesAllocatorInstalled = false;
    expectWorkIsDoneWithoutAllocations(GetParam());
    expectWorkOfANewThreadIsDoneWithoutAllocations(GetParam());
    isRuntimesAllocatorInstalled = true;
}

TEST_P(ParallelRuntime, IsDoneWithoutWhereNoAddressSpaceIsLeft) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizers take address space themselves";
#endif
    for (std::size_t const kibibytes : {0, 64, 256, 1'024, 2'048, 4'096, 4'200, 5'120, 6'144, 8'192, 10'240,
                                        12'288, 16'384, 32'768, 37'000, 65'536}) {
        EXPECT_EXIT(exitAfterWorkDuring<AddressSpaceLimit>(GetParam(), Loss::OfNothing, kibibytes * 1'024),
                    ExitedWithCode(EXIT_SUCCESS), "")
            << kibibytes << " KiB to spare";
        EXPECT_EXIT(exitAfterWorkOfANewThreadDuring<AddressSpaceLimit>(GetParam(), kibibytes * 1'024),
                    ExitedWithCode(EXIT_SUCCESS), "")
            << kibibytes << " KiB to spare";
    }
}

TEST_P(ParallelRuntime, IsDoneWithoutWhereThreadsAreRefused) {
    auto const workers = static_cast<int>(std::thread::hardware_concurrency()) - 1;
    for (int threads = 0; threads <= 2 * workers + 2; ++threads) {
        // Enough to find that threads can be had, and then too few.
        Loss const loss = threads >= workers && threads < 2 * workers ? Loss::OfTheRuntime : Loss::OfNothing;
        EXPECT_EXIT(exitAfterWorkDuring<ThreadLimit>(GetParam(), loss, threads), ExitedWithCode(EXIT_SUCCESS),
                    "")
            << threads << " threads";
        EXPECT_EXIT(exitAfterWorkOfANewThreadDuring<ThreadLimit>(GetParam(), threads),
                    ExitedWithCode(EXIT_SUCCESS), "")
            << threads << " threads";
    }
}

TEST_P(ParallelRuntime, StartsItsThreadsFromAnArenaWithoutPlacesForThem) {
    EXPECT_EXIT(exitAfterWorkInASmallArena(GetParam()), ExitedWithCode(EXIT_SUCCESS), "");
}

TEST_P(ParallelRuntime, StartsThreadsThatAHostAllowsLater) {
    EXPECT_EXIT(exitAfterWorkUnderALiftedLimit(GetParam()), ExitedWithCode(EXIT_SUCCESS), "");
}

TEST_P(ParallelRuntime, KeepsItsThreadsWhenTheOneThatStartedThemEnds) {
    EXPECT_EXIT(exitAfterWorkOfOneThreadAfterTheOther(GetParam()), ExitedWithCode(EXIT_SUCCESS), "");
}

TEST_P(ParallelRuntime, HasOnEachThreadWhatALoopTakesFromTheHeap) {
    if (!FaultyHeap::isSupported())
        GTEST_SKIP() << "the sanitizers' heap cannot be made to fail";
    for (bool const isInstalled : {true, false}) {
        isRuntimesAllocatorInstalled = isInstalled;
        EXPECT_EXIT(exitAfterWorkOfManyThreadsWithoutAllocations(GetParam()), ExitedWithCode(EXIT_SUCCESS),
                    "")
            << "its own allocator is installed: " << isInstalled;
    }
    isRuntimesAllocatorInstalled = true;
}

// Asking costs more than a short operation.
TEST_P(ParallelRuntime, AsksForThreadsEverMoreSeldomWhereTheyAreRefused) {
    if (std::thread::hardware_concurrency() < 2)
        GTEST_SKIP() << "this machine has one hardware thread";
    // The 1st, 2nd, 4th, ..., 1,024th, 2,048th and 3,072nd operation asks.
    EXPECT_EXIT(exitWithTheNumberOfThreadsAskedForDuring(3'072, GetParam()), ExitedWithCode(13), "");
}

INSTANTIATE_TEST_SUITE_P(EachParallelPolicy, ParallelRuntime, testing::Values(Parallel, ParallelUnsequenced),
                         [](auto const& parameter) {
                             return parameter.param == Parallel ? "Parallel" : "ParallelUnsequenced";
                         });

} // namespace

} // namespace Tervane::Math

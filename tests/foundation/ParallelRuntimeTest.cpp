// What the parallel policies do in a process that cannot get memory or threads. Each case needs a process
// whose parallel runtime has not been started, so each is the exit of a child that begins anew.

#include "kit/Allocations.h"

#include <Math/Math.h>

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <oneapi/tbb/task_arena.h>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>

// These stand before the C library's, for oneTBB and the library too.
namespace {

std::atomic<int> threadsAllowed{1'000};
std::atomic<bool> isRuntimesAllocatorInstalled{true};

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
    if (threadsAllowed.fetch_sub(1) <= 0)
        return EAGAIN;
    return create(thread, attributes, routine, argument);
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

constexpr std::size_t length = 200'000;
constexpr unsigned timeLimitInSeconds = 60;

/// A sum that grows by one with every operation.
class Work {
public:
    explicit Work(AlgorithmExecutionPolicy policy) {
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
        return std::all_of(_sum.data(), _sum.data() + length, [this](double x) { return x == _expected; });
    }

private:
    Vector2 _sum, _one;
    double _expected = 0.0;
};

/// Three operations in the middle of a fault, and three, here and on another thread, when it is over.
template<class Fault, class... Arguments>
void exitAfterWorkDuring(AlgorithmExecutionPolicy policy, Arguments... arguments) {
    alarm(timeLimitInSeconds);
    Work work(policy);
    {
        Fault const fault(arguments...);
        work(3);
    }
    work(3);
    std::thread([&] { work(3); }).join();
    std::exit(work.isRight() ? EXIT_SUCCESS : EXIT_FAILURE);
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

class ParallelRuntime : public testing::TestWithParam<AlgorithmExecutionPolicy> {
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

using testing::ExitedWithCode;

/// Lets the allocations 1 to `last` fail one by one, and all from there on.
void expectWorkIsDoneWithout(AlgorithmExecutionPolicy policy, std::size_t last) {
    for (std::size_t n = 1; n <= last; ++n)
        for (auto const faults : {FaultyHeap::Faults::One, FaultyHeap::Faults::AllFromThere}) {
            EXPECT_EXIT(exitAfterWorkDuring<FaultyHeap>(policy, n, faults), ExitedWithCode(EXIT_SUCCESS), "")
                << "allocation " << n << (faults == FaultyHeap::Faults::One ? "" : " and all that follow");
        }
}

/// The same for allocations of a thread that has never used the runtime.
void expectWorkOfANewThreadIsDoneWithout(AlgorithmExecutionPolicy policy) {
    for (std::size_t n = 1; n <= 200; n += 7)
        for (auto const faults : {FaultyHeap::Faults::One, FaultyHeap::Faults::AllFromThere}) {
            EXPECT_EXIT(exitAfterWorkOfANewThreadDuring<FaultyHeap>(policy, n, faults),
                        ExitedWithCode(EXIT_SUCCESS), "")
                << "allocation " << n << (faults == FaultyHeap::Faults::One ? "" : " and all that follow");
        }
}

TEST_P(ParallelRuntime, IsDoneWithoutWhenAnAllocationFails) {
    if (!FaultyHeap::isSupported())
        GTEST_SKIP() << "the sanitizers' heap cannot be made to fail";
    expectWorkIsDoneWithout(GetParam(), 60);
}

TEST_P(ParallelRuntime, IsDoneWithoutWhenAnAllocationOfANewThreadFails) {
    if (!FaultyHeap::isSupported())
        GTEST_SKIP() << "the sanitizers' heap cannot be made to fail";
    expectWorkOfANewThreadIsDoneWithout(GetParam());
}

// The runtime then takes everything from the heap.
TEST_P(ParallelRuntime, IsDoneWithoutWhenAnAllocationFailsWhereItHasNoAllocatorOfItsOwn) {
    if (!FaultyHeap::isSupported())
        GTEST_SKIP() << "the sanitizers' heap cannot be made to fail";
    isRuntimesAllocatorInstalled = false;
    expectWorkIsDoneWithout(GetParam(), 120);
    expectWorkOfANewThreadIsDoneWithout(GetParam());
    isRuntimesAllocatorInstalled = true;
}

TEST_P(ParallelRuntime, IsDoneWithoutWhereNoAddressSpaceIsLeft) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizers take address space themselves";
#endif
    for (std::size_t const kibibytes : {0, 64, 256, 1'024, 2'048, 4'096, 4'200, 5'120, 6'144, 8'192, 10'240,
                                        12'288, 16'384, 32'768, 37'000, 65'536}) {
        EXPECT_EXIT(exitAfterWorkDuring<AddressSpaceLimit>(GetParam(), kibibytes * 1'024),
                    ExitedWithCode(EXIT_SUCCESS), "")
            << kibibytes << " KiB to spare";
        EXPECT_EXIT(exitAfterWorkOfANewThreadDuring<AddressSpaceLimit>(GetParam(), kibibytes * 1'024),
                    ExitedWithCode(EXIT_SUCCESS), "")
            << kibibytes << " KiB to spare";
    }
}

TEST_P(ParallelRuntime, IsDoneWithoutWhereThreadsAreRefused) {
    auto const most = static_cast<int>(2 * std::thread::hardware_concurrency());
    for (int threads = 0; threads <= most; ++threads) {
        EXPECT_EXIT(exitAfterWorkDuring<ThreadLimit>(GetParam(), threads), ExitedWithCode(EXIT_SUCCESS), "")
            << threads << " threads";
        EXPECT_EXIT(exitAfterWorkOfANewThreadDuring<ThreadLimit>(GetParam(), threads),
                    ExitedWithCode(EXIT_SUCCESS), "")
            << threads << " threads";
    }
}

TEST_P(ParallelRuntime, StartsItsThreadsFromAnArenaWithoutPlacesForThem) {
    EXPECT_EXIT(exitAfterWorkInASmallArena(GetParam()), ExitedWithCode(EXIT_SUCCESS), "");
}

INSTANTIATE_TEST_SUITE_P(EachParallelPolicy, ParallelRuntime, testing::Values(Parallel, ParallelUnsequenced),
                         [](auto const& parameter) {
                             return parameter.param == Parallel ? "Parallel" : "ParallelUnsequenced";
                         });

} // namespace

} // namespace Tervane::Math

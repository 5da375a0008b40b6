#include "kit/Allocations.h"

#include <Math/AlignedAllocator.h>
#include <Math/Detail/ElementArray.h>
#include <Math/Detail/RecyclingAllocator.h>
#include <Math/Vector2.h>

#include <gtest/gtest.h>

#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <new>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace Tervane::Math::Detail {

namespace {

using TestKit::AllocationCounter;
using TestKit::FailingAllocations;
using TestKit::KeptStorage;

#if defined(TVNMATH_STORAGE_IS_RECYCLED)
constexpr bool storageIsRecycled = true;
#else
constexpr bool storageIsRecycled = false;
#endif

double* take(std::size_t n) {
    return RecyclingAllocator().allocate(n);
}

void giveBack(double* p, std::size_t n) {
    RecyclingAllocator().deallocate(p, n);
}

/// How many of `count` blocks of `n` elements the heap is asked for, all of which the thread then keeps if it
/// can.
std::size_t newOnesAmong(std::size_t count, std::size_t n) {
    std::vector<double*> blocks(count);
    AllocationCounter const counter(KeptStorage::Allowed);
    for (double*& p : blocks)
        p = take(n);
    std::size_t const result = counter.count();
    for (double* const p : blocks)
        giveBack(p, n);
    return result;
}

/// Runs `body` in a child process.
/// @return whether it came to an end and found what it looked for
template<class Body>
bool holdsInChild(Body const& body) {
    pid_t const child = fork();
    if (child == 0)
        _exit(body() ? 0 : 1);
    int status = -1;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// Runs `body` on many threads, one after the other, each of which has kept as much as it may.
/// @return by how many bytes the program has grown
template<class Body>
std::size_t growthOverThreads(Body const& body) {
    constexpr int threads = 64;
    auto const run = [&] {
        std::thread([&] {
            for (std::size_t n = 8; n <= RecyclingAllocator::longestKept; n += n / 4 + 1)
                newOnesAmong(20, n);
            body();
        }).join();
    };
    run(); // what the run-time libraries set up for the first
    std::size_t const before = TestKit::heapInUse();
    for (int i = 0; i < threads; ++i)
        run();
    std::size_t const after = TestKit::heapInUse();
    return after > before ? after - before : 0;
}

/// What the system says of the mapping that an address lies in, "hg" where huge pages are asked for; nothing
/// where it does not tell.
std::string mappingFlags(void const* p) {
    auto const address = reinterpret_cast<std::uintptr_t>(p);
    std::ifstream mappings("/proc/self/smaps");
    bool isHere = false;
    for (std::string line; std::getline(mappings, line);) {
        std::uintptr_t begin = 0, end = 0;
        char dash = 0;
        if (std::istringstream(line) >> std::hex >> begin >> dash >> end && dash == '-')
            isHere = begin <= address && address < end;
        else if (isHere && line.starts_with("VmFlags:"))
            return line;
    }
    return "";
}

constexpr std::size_t muchLessThanIsKept = 4U << 20;

} // namespace

TEST(RecyclingAllocator, GivesDisjointBlocksOfTheFullLengthOnCacheLines) {
    for (int round = 0; round < 2; ++round) {
        std::vector<double*> blocks;
        for (std::size_t n = 1; n <= RecyclingAllocator::longestKept + 100; n += 1 + n / 16) {
            double* const p = take(n);
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(p) % 64, 0U) << n;
            std::fill_n(p, n, static_cast<double>(n));
            blocks.push_back(p);
        }
        std::size_t n = 1;
        for (double* const p : blocks) {
            EXPECT_TRUE(std::all_of(p, p + n, [n](double x) { return x == static_cast<double>(n); })) << n;
            giveBack(p, n);
            n += 1 + n / 16;
        }
    }
}

TEST(RecyclingAllocator, ComparesEqualAlways) {
    EXPECT_TRUE(RecyclingAllocator() == RecyclingAllocator());
}

TEST(RecyclingAllocator, GivesNullForNothing) {
    EXPECT_EQ(take(0), nullptr);
    giveBack(nullptr, 0);
}

TEST(RecyclingAllocator, KeepsABlockForTheNextThatAsks) {
    double* const p = take(100);
    giveBack(p, 100);
    AllocationCounter const counter(KeptStorage::Allowed);
    double* const again = take(97);
    EXPECT_EQ(counter.count(), storageIsRecycled ? 0U : 1U);
    EXPECT_TRUE(again == p || !storageIsRecycled);
    giveBack(again, 97);
}

TEST(RecyclingAllocator, KeepsNoMoreThanItSays) {
    std::thread([] {
        std::size_t bytes = 0;
        std::size_t mostOfAClass = 40;
        std::size_t previousClass = 0;
        giveBack(take(8), 8); // what oneMKL sets up for a thread
        for (std::size_t n = 8; n <= RecyclingAllocator::longestKept; n += 8) {
            // The length of the block is what is asked of the heap, but for oneMKL's own header.
            AllocationCounter const measured;
            giveBack(take(n), n);
            std::size_t const block = measured.bytes();
            if (block == previousClass)
                continue;
            previousClass = block;
            EXPECT_LE(block, n * sizeof(double) * 5 / 4 + 256) << n;
        }
        for (std::size_t n = 8; n <= RecyclingAllocator::longestKept;) {
            newOnesAmong(40, n);
            std::size_t const kept = 40 - newOnesAmong(40, n);
            EXPECT_LE(kept, mostOfAClass) << "more of " << n << " than of fewer";
            mostOfAClass = kept;
            bytes += kept * n * sizeof(double);
            // The classes' longest lengths: every line up to 8, then four in each doubling.
            std::size_t octave = 64;
            while (octave < n + 8)
                octave *= 2;
            n += std::max<std::size_t>(octave / 8, 8);
        }
        EXPECT_EQ(bytes, storageIsRecycled ? 868U * 1024 : 0U);
        newOnesAmong(5, RecyclingAllocator::longestKept + 1);
        EXPECT_EQ(newOnesAmong(5, RecyclingAllocator::longestKept + 1), 5U);
    }).join();
}

TEST(RecyclingAllocator, AsksForHugePagesFromFourMebibytesOn) {
    constexpr std::size_t shortest = (std::size_t{4} << 20) / sizeof(double);
    double* const p = take(shortest);
    std::string const flags = mappingFlags(p + shortest / 2);
    giveBack(p, shortest);
    if (flags.empty() || !std::ifstream("/sys/kernel/mm/transparent_hugepage/enabled"))
        GTEST_SKIP() << "this system has no huge pages, or does not tell";
    EXPECT_NE(flags.find(" hg"), std::string::npos) << flags;
}

TEST(RecyclingAllocator, TakesABlockBackOnAnotherThread) {
    double* p = nullptr;
    std::thread([&] {
        p = take(50);
        std::fill_n(p, 50, 1.5);
    }).join();
    EXPECT_EQ(p[49], 1.5);
    giveBack(p, 50);
    double* const again = take(50);
    EXPECT_TRUE(again == p || !storageIsRecycled);
    std::thread([&] { giveBack(again, 50); }).join();
}

TEST(RecyclingAllocator, AThreadThatEndsReturnsWhatItKeeps) {
    EXPECT_LT(growthOverThreads([] {}), muchLessThanIsKept);
}

TEST(RecyclingAllocator, ServesDestructorsThatRunAfterAThreadsStoreIsGone) {
    // A key made now has its destructor called after the one that closes the thread's store.
    pthread_key_t key{};
    ASSERT_EQ(pthread_key_create(&key,
                                 [](void* p) {
                                     delete static_cast<Vector2*>(p);
                                     for (std::size_t n = 8; n <= RecyclingAllocator::longestKept; n *= 2)
                                         newOnesAmong(20, n);
                                 }),
              0);
    std::size_t const growth =
        growthOverThreads([&] { ASSERT_EQ(pthread_setspecific(key, new Vector2(1000, 1.5)), 0); });
    EXPECT_LT(growth, muchLessThanIsKept);
    pthread_key_delete(key);
}

TEST(RecyclingAllocator, ServesThreadLocalObjects) {
    EXPECT_LT(growthOverThreads([] {
                  thread_local Vector2 const v(1000, 2.5);
                  EXPECT_EQ(v[999], 2.5);
              }),
              muchLessThanIsKept);
}

TEST(RecyclingAllocator, ServesAChildOfFork) {
    newOnesAmong(20, 100);
    Vector2 const fromParent(100, 1.5);
    EXPECT_TRUE(holdsInChild([&] {
        bool isRight = !storageIsRecycled || newOnesAmong(10, 100) == 0;
        Vector2 const v = fromParent + 1.0;
        isRight = isRight && v[99] == 2.5;
        std::thread([&] {
            Vector2 const w = v + fromParent;
            isRight = isRight && w[99] == 4.0;
        }).join();
        return isRight;
    }));
}

TEST(RecyclingAllocator, ReturnsWhatItKeepsWhenMemoryRunsOut) {
    if (!FailingAllocations::areSupported())
        GTEST_SKIP() << "the sanitizer's heap cannot be made to fail";
    newOnesAmong(16, 100);
    {
        FailingAllocations const failing(1000, KeptStorage::Allowed);
        EXPECT_THROW(static_cast<void>(take(100'000)), std::bad_alloc);
    }
    EXPECT_EQ(newOnesAmong(16, 100), 16U);
    EXPECT_EQ(newOnesAmong(16, 100), storageIsRecycled ? 0U : 16U) << "blocks are kept afterwards, too";
}

TEST(RecyclingAllocator, DoesNotFailWhereTheExactLengthCanBeHad) {
    if (!FailingAllocations::areSupported())
        GTEST_SKIP() << "the sanitizer's heap cannot be made to fail";
    // In a process of its own, which afterwards does without kept blocks.
    EXPECT_TRUE(holdsInChild([] {
        constexpr std::size_t n = 2'561; // its class has 3,072 elements
        double* shorter = nullptr;
        {
            FailingAllocations const failing(n * sizeof(double) + 1'000, KeptStorage::Allowed);
            shorter = take(n);
        }
        std::fill_n(shorter, n, 1.0);
        giveBack(shorter, n);
        // It must not become a block of its class.
        return newOnesAmong(1, 3'000) == 1;
    }));
}

TEST(RecyclingAllocator, ABlockThatIsLongerDoesNotShowInTheCapacity) {
    giveBack(take(128), 128);
    RealArray const a(113);
    EXPECT_EQ(a.capacity(), 113U);
    RealArray grown(10);
    grown.resize(11, 1.0);
    EXPECT_EQ(grown.capacity(), 15U);
}

TEST(RecyclingAllocator, LeavesAlignedAllocatorAsItIs) {
    AlignedAllocator aligned;
    aligned.deallocate(aligned.allocate(100), 100);
    AllocationCounter const counter(KeptStorage::Allowed);
    double* const p = aligned.allocate(100);
    EXPECT_EQ(counter.count(), 1U);
    aligned.deallocate(p, 100);
}

TEST(RecyclingAllocator, IsSuspendedWhileAllocationsAreCounted) {
    giveBack(take(100), 100);
    AllocationCounter const counter;
    for (int i = 0; i < 3; ++i)
        giveBack(take(100), 100);
    EXPECT_EQ(counter.count(), 3U);
}

} // namespace Tervane::Math::Detail

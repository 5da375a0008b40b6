// How the library's calls into oneMKL get on with the process around them: no threads to be had, a child of
// fork, a host that does something else in between, a host that traps floating-point exceptions.
#include "kit/Allocations.h"
#include "kit/Children.h"
#include "kit/Threads.h"

#include <Math/BLAS.h>
#include <Math/FFT.h>
#include <Math/LAPACK.h>
#include <Math/Matrix2.h>
#include <Math/Random.h>
#include <Math/Vector2.h>

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <fenv.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <thread>

namespace Tervane::Math {

namespace {

using TestKit::describe;
using TestKit::runInChild;
using TestKit::threadsOfThisProcess;

/// Large enough for oneMKL to use its threads.
constexpr std::size_t order = 300;

struct Problem {
    Matrix2 ones = Matrix2(order, order, 1.0);
    Matrix2 product = Matrix2(order, order, 0.0);
    Matrix2 system = Matrix2(order, order, 1.0);
    Vector2 rightHandSide = Vector2(order, static_cast<double>(order) + 1.0);

    Problem() {
        for (std::size_t i = 0; i < order; ++i)
            system[i][i] = 2.0;
    }

    /// @return 0 when a product and a solution come out right, or which did not
    int run() {
        if (!BLAS::gemm(NoTranspose, NoTranspose, 1.0, ones, ones, 0.0, product) || product[0][0] != order
            || product[order - 1][order - 1] != order)
            return 1;
        Matrix2 a = system;
        Vector2 b = rightHandSide;
        if (!LAPACK::gesv(a, b) || std::abs(b[0] - 1.0) > 1e-10 || std::abs(b[order - 1] - 1.0) > 1e-10)
            return 2;
        return 0;
    }
};

std::size_t addressSpaceInUse() {
    std::ifstream statistics("/proc/self/statm");
    std::size_t pages = 0;
    statistics >> pages;
    return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

/// Limits this process to its address space now and some more.
void limitAddressSpace(std::size_t spareKiB) {
    rlimit limit{};
    limit.rlim_cur = limit.rlim_max = addressSpaceInUse() + spareKiB * 1024;
    setrlimit(RLIMIT_AS, &limit);
}

/// Lets this process start no thread any more. The system lets the superuser, so the process becomes
/// another's.
/// @return whether that worked
bool refuseThreads() {
    rlimit const none{};
    return setrlimit(RLIMIT_NPROC, &none) == 0 && (geteuid() != 0 || setuid(65'534) == 0);
}

double processorSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

// The first product of its process, so first in this file.
TEST(ThreadUse, ProductIsComputedWithoutThreadsWhenNoneIsToBeHad) {
    if (!TestKit::FailingAllocations::areSupported())
        GTEST_SKIP() << "the sanitizers need address space of their own";
    for (std::size_t const spareKiB : {64, 256, 1024, 4096, 8192, 12288, 65536}) {
        auto const outcome = runInChild([&] {
            Problem problem;
            Vector2 const x(order, 1.0);
            Vector2 y(order);
            limitAddressSpace(spareKiB);
            if (!BLAS::gemv(NoTranspose, 1.0, problem.ones, x, 0.0, y) || y[order - 1] != order)
                return 2;
            return BLAS::gemm(NoTranspose, NoTranspose, 1.0, problem.ones, problem.ones, 0.0, problem.product)
                           && problem.product[order - 1][order - 1] == order
                       ? 0
                       : 1;
        });
        EXPECT_TRUE(outcome.isClean()) << spareKiB << " KiB: " << describe(outcome);
    }
}

// The OpenMP runtime tells its settings when it starts, if it is asked to. For such products oneMKL is not
// told that there is one thread, so it must not ask for their number.
TEST(ThreadUse, SmallProductsWithVectorsLeaveTheOpenMPRuntimeAlone) {
    if (dlsym(RTLD_DEFAULT, "kmp_get_blocktime") == nullptr)
        GTEST_SKIP() << "built without LLVM's OpenMP runtime";
    GTEST_FLAG_SET(death_test_style,
                   "threadsafe"); // processes in which no other test has started the runtime
    auto const multiply = [](std::size_t rows, std::size_t columns) {
        setenv("OMP_DISPLAY_ENV", "TRUE", 1);
        Matrix2 const a(rows, columns, 1.0);
        auto const product = BLAS::gemv(NoTranspose, a, Vector2(columns, 1.0));
        auto const transposed = BLAS::gemv(Transposed, a, Vector2(rows, 1.0));
        return product && transposed && product.value()[0] == static_cast<double>(columns)
               && transposed.value()[0] == static_cast<double>(rows);
    };
    auto const multiplySmall = [&] {
        for (std::size_t const rows : {1, 2, 3, 4, 7, 8, 15, 16, 31, 32, 47, 63})
            for (std::size_t const columns : {1, 2, 3, 4, 7, 8, 15, 16, 31, 32, 47, 63})
                if (!multiply(rows, columns))
                    std::exit(1);
        std::exit(0);
    };
    EXPECT_EXIT(multiplySmall(), testing::ExitedWithCode(0), "^$");
    EXPECT_EXIT(std::exit(multiply(order, order) ? 0 : 1), testing::ExitedWithCode(0),
                "OPENMP DISPLAY ENVIRONMENT");
}

// Nor do small systems, also those with more right-hand sides than equations.
TEST(ThreadUse, SmallSystemsLeaveTheOpenMPRuntimeAlone) {
    if (dlsym(RTLD_DEFAULT, "kmp_get_blocktime") == nullptr)
        GTEST_SKIP() << "built without LLVM's OpenMP runtime";
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    auto const solve = [](std::size_t equations, std::size_t rightHandSides) {
        setenv("OMP_DISPLAY_ENV", "TRUE", 1);
        Matrix2 a(equations, equations, 0.0);
        for (std::size_t i = 0; i < equations; ++i)
            a[i][i] = 2.0;
        Matrix2 b(equations, rightHandSides, 1.0);
        return BLAS::gesv(a, b) && b[rightHandSides - 1][equations - 1] == 0.5;
    };
    auto const solveSmall = [&] {
        for (std::size_t const equations : {1, 2, 4, 8, 12})
            for (std::size_t const rightHandSides : {1, 2, 8, 16})
                if (!solve(equations, rightHandSides))
                    std::exit(1);
        std::exit(0);
    };
    EXPECT_EXIT(solveSmall(), testing::ExitedWithCode(0), "^$");
    EXPECT_EXIT(std::exit(solve(order, 1) ? 0 : 1), testing::ExitedWithCode(0), "OPENMP DISPLAY ENVIRONMENT");
}

// The same when the threads were there once, in the parent.
TEST(ThreadUse, ChildOfForkComputesLikeItsParent) {
    Problem problem;
    ASSERT_EQ(problem.run(), 0);
    auto const outcome = runInChild([&] {
        if (int const wrong = problem.run(); wrong != 0)
            return wrong;
        auto const grandchild = runInChild([&] { return problem.run(); });
        return grandchild.isClean() ? 0 : 3;
    });
    EXPECT_TRUE(outcome.isClean()) << describe(outcome);
    auto const starved = runInChild([&] {
        limitAddressSpace(64);
        return BLAS::gemm(NoTranspose, NoTranspose, 1.0, problem.ones, problem.ones, 0.0, problem.product)
                   ? 0
                   : 1;
    });
    if (TestKit::FailingAllocations::areSupported()) {
        EXPECT_TRUE(starved.isClean()) << describe(starved);
    }
    EXPECT_EQ(problem.run(), 0);
}

// It has none of its parent's threads.
TEST(ThreadUse, ChildOfForkComputesAloneWhereThreadsAreRefused) {
    Problem problem;
    ASSERT_EQ(problem.run(), 0);
    auto const outcome = runInChild([&] { return refuseThreads() ? problem.run() : 0; });
    EXPECT_TRUE(outcome.isClean()) << describe(outcome);
}

// The OpenMP runtime lets its threads look for work for 200 ms.
TEST(ThreadUse, IdleHostPaysForNoThreads) {
    Problem problem;
    ASSERT_EQ(problem.run(), 0);
    double idle = 1.0;
    // More than once, since a busy machine may let a thread wait that is about to sleep.
    for (int i = 0; i < 5 && idle >= 0.05; ++i) {
        ASSERT_TRUE(BLAS::gemm(NoTranspose, NoTranspose, problem.ones, problem.ones));
        double const before = processorSeconds();
        std::this_thread::sleep_for(std::chrono::milliseconds(150));
        idle = processorSeconds() - before;
    }
    EXPECT_LT(idle, 0.05);
}

/// Whether oneMKL has threads of its own here that a child of `fork` may use as well.
bool hasThreadsToUse() {
    return std::thread::hardware_concurrency() > 1 && dlsym(RTLD_DEFAULT, "kmp_get_blocktime") != nullptr;
}

// In a child, which has the calling thread only.
TEST(ThreadUse, SmallCallsStartNoThreads) {
    if (!hasThreadsToUse())
        GTEST_SKIP() << "oneMKL computes on the calling thread here";
    auto const outcome = runInChild([] {
        Matrix2 a = Matrix2(8, 8, 1.0), product = Matrix2(8, 8, 0.0);
        for (std::size_t i = 0; i < 8; ++i)
            a[i][i] = 2.0;
        Vector2 b(8, 1.0);
        if (!BLAS::gemm(NoTranspose, NoTranspose, 1.0, a, a, 0.0, product) || !LAPACK::gesv(a, b)
            || !FFT::fft_real(Vector2(64, 1.0)))
            return 1;
        return threadsOfThisProcess() == 1 ? 0 : 2;
    });
    EXPECT_TRUE(outcome.isClean()) << describe(outcome);
}

/// How much of a large product's work threads other than the calling one do, 0.5 where there are two.
double shareOfOtherThreads(Problem& problem) {
    auto const now = [](clockid_t clock) {
        timespec t{};
        clock_gettime(clock, &t);
        return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
    };
    double const all = now(CLOCK_PROCESS_CPUTIME_ID), own = now(CLOCK_THREAD_CPUTIME_ID);
    for (int i = 0; i < 10; ++i)
        if (!BLAS::gemm(NoTranspose, NoTranspose, 1.0, problem.ones, problem.ones, 0.0, problem.product))
            return -1.0;
    return 1.0 - (now(CLOCK_THREAD_CPUTIME_ID) - own) / (now(CLOCK_PROCESS_CPUTIME_ID) - all);
}

// A small call takes the calling thread alone, and only for itself. Threads that are there are not asked for
// again.
TEST(ThreadUse, LargeProductsAreSpreadAfterSmallOnesAndWhereNoMoreThreadsAreToBeHad) {
    if (!hasThreadsToUse())
        GTEST_SKIP() << "oneMKL computes on the calling thread here";
    auto const outcome = runInChild([] {
        Problem problem;
        Matrix2 const small(2, 2, 1.0);
        if (!BLAS::gemm(NoTranspose, NoTranspose, small, small) || problem.run() != 0)
            return 1;
        if (shareOfOtherThreads(problem) < 0.2)
            return 2;
        return !refuseThreads() || shareOfOtherThreads(problem) >= 0.2 ? 0 : 3;
    });
    EXPECT_TRUE(outcome.isClean()) << describe(outcome);
}

// oneMKL counts on teams of the size that it asks for.
TEST(ThreadUse, HostThatLetsTheRuntimeAdjustItsTeamsGetsProductsOfTheCallingThread) {
    auto const letAdjust = reinterpret_cast<void (*)(int)>(dlsym(RTLD_DEFAULT, "omp_set_dynamic"));
    if (!hasThreadsToUse() || letAdjust == nullptr)
        GTEST_SKIP() << "oneMKL computes on the calling thread here";
    auto const outcome = runInChild([=] {
        Problem problem;
        if (problem.run() != 0)
            return 1;
        letAdjust(1);
        return shareOfOtherThreads(problem) < 0.1 && problem.run() == 0 ? 0 : 2;
    });
    EXPECT_TRUE(outcome.isClean()) << describe(outcome);
}

TEST(ThreadUse, OpenMPSettingsOfTheHostStayAsTheyAre) {
    auto const blockTime = reinterpret_cast<int (*)()>(dlsym(RTLD_DEFAULT, "kmp_get_blocktime"));
    if (blockTime == nullptr)
        GTEST_SKIP() << "built without LLVM's OpenMP runtime";
    auto const setBlockTime = reinterpret_cast<void (*)(int)>(dlsym(RTLD_DEFAULT, "kmp_set_blocktime"));
    Problem problem;
    for (int const milliseconds : {200, 5}) { // the runtime's own, and one that a host has chosen
        setBlockTime(milliseconds);
        ASSERT_EQ(problem.run(), 0);
        EXPECT_EQ(blockTime(), milliseconds);
    }
    setBlockTime(200);
}

TEST(ThreadUse, ThreadsThatEndMayBeFollowedByOthers) {
    for (int i = 0; i < 20; ++i) {
        int wrong = -1;
        std::thread([&] { wrong = Problem().run(); }).join();
        ASSERT_EQ(wrong, 0);
    }
}

// A matrix of rank one takes the least-squares drivers through underflow from about 30 rows on.
TEST(HeldTraps, DriversDoNotTrapInAHostThatUnmasksExceptions) {
    auto const outcome = runInChild([] {
        std::size_t const n = 40;
        Matrix2 rankOne(n, n, 1.0);
        for (std::size_t c = 0; c < n; ++c)
            for (std::size_t r = 1; r < n; r += 2)
                rankOne[c][r] = 2.0;
        Matrix2 const constraint = Random::uniform(-1.0, 1.0, 1, n);
        int const traps = FE_UNDERFLOW | FE_OVERFLOW | FE_INVALID | FE_DIVBYZERO;
        feenableexcept(traps);
        Matrix2 a1 = rankOne, a2 = rankOne, a3 = rankOne, c3 = constraint;
        Vector2 const ones(n, 1.0);
        Vector2 b1 = ones, b2 = ones, b3 = ones, d3(1, 1.0);
        bool const isSolved = LAPACK::gelsd(a1, b1, -1.0).has_value();
        static_cast<void>(LAPACK::gels(NoTranspose, a2, b2));
        static_cast<void>(LAPACK::gglse(a3, c3, b3, d3));
        return isSolved && fegetexcept() == traps ? 0 : 1;
    });
    EXPECT_TRUE(outcome.isClean()) << describe(outcome);
}

TEST(HeldTraps, MaskedExceptionsAreToldAsEver) {
    feclearexcept(FE_ALL_EXCEPT);
    Matrix2 a = Random::uniform(-1.0, 1.0, 20, 20);
    Vector2 b = Random::uniform(-1.0, 1.0, 20);
    feenableexcept(FE_DIVBYZERO);
    auto const solved = LAPACK::gesv(a, b);
    bool const isInexact = fetestexcept(FE_INEXACT) != 0;
    fedisableexcept(FE_DIVBYZERO);
    EXPECT_TRUE(solved.has_value());
    EXPECT_TRUE(isInexact);
}

} // namespace

} // namespace Tervane::Math

// How a process that never calls setExecutionPolicy runs its loops, and that the parallel policies really are
// parallel. Results are the same either way, so nothing else would notice.

#include "foundation/ElementwiseDispatch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

namespace Tervane::Math {

namespace {

/// Where threads that work on one range wait for each other, but not for ever.
class Meeting {
public:
    /// Returns at once when two threads have met, and after the time is up in any case.
    void attend() {
        if (_isHeld.load())
            return;
        std::unique_lock lock(_mutex);
        _threads.insert(std::this_thread::get_id());
        if (_threads.size() > 1) {
            _isHeld = true;
            _arrival.notify_all();
        } else if (!_arrival.wait_until(lock, _end, [this] { return _isHeld.load(); })) {
            _isHeld = true; // nobody came: the rest need not wait
        }
    }

    std::size_t threads() {
        std::lock_guard const lock(_mutex);
        return _threads.size();
    }

private:
    std::chrono::steady_clock::time_point const _end =
        std::chrono::steady_clock::now() + std::chrono::seconds(20);
    std::mutex _mutex;
    std::condition_variable _arrival;
    std::set<std::thread::id> _threads;
    std::atomic<bool> _isHeld = false;
};

/// Adds one, wherever it runs.
struct AttendAndIncrement {
    static constexpr Detail::ElementCost cost = Detail::ElementCost::Function;

    Meeting* meeting;

    double operator()(double x) const {
        meeting->attend();
        return x + 1.0;
    }
};

constexpr std::size_t length = 100'000;

/// How many threads took part in one element-wise operation.
std::size_t threadsAtWork() {
    Meeting meeting;
    std::vector<double> const x(length, 1.0);
    std::vector<double> y(length);
    ElementwiseDispatch::transform(x.data(), x.data() + length, y.data(), AttendAndIncrement{&meeting});
    EXPECT_TRUE(std::all_of(y.begin(), y.end(), [](double value) { return value == 2.0; }));
    return meeting.threads();
}

bool hasOneThread() {
    return std::thread::hardware_concurrency() < 2;
}

TEST(DefaultPolicy, IsParallelUnsequenced) {
    EXPECT_EQ(Detail::executionPolicy(), ParallelUnsequenced);
}

TEST(DefaultPolicy, SpreadsElementwiseWorkOverThreads) {
    if (hasOneThread())
        GTEST_SKIP() << "this machine has one hardware thread";
    EXPECT_GT(threadsAtWork(), 1u);
}

TEST(ParallelPolicies, SpreadElementwiseWorkOverThreads) {
    if (hasOneThread())
        GTEST_SKIP() << "this machine has one hardware thread";
    for (AlgorithmExecutionPolicy const policy : {Parallel, ParallelUnsequenced}) {
        setExecutionPolicy(policy);
        EXPECT_GT(threadsAtWork(), 1u) << policy;
    }
    setExecutionPolicy(ParallelUnsequenced);
}

TEST(ParallelPolicies, SpreadElementwiseWorkOfEveryThread) {
    if (hasOneThread())
        GTEST_SKIP() << "this machine has one hardware thread";
    EXPECT_GT(threadsAtWork(), 1u);
    std::thread([] { EXPECT_GT(threadsAtWork(), 1u) << "on a thread that did not start the others"; }).join();
}

} // namespace

} // namespace Tervane::Math

// Memory runs out at every point of every public operation: at the n-th allocation alone, and at the n-th and
// all after it; of everything, and of the large blocks that hold elements; in a process that has performed
// the operation before and in one that has not; on the calling thread and under a parallel policy. Nothing
// may crash, end the process, hang, print or leak; what fails fails as promised, and the next call is right.
//
// The long form (TVNMATH_TESTS=all) looks at every point in fresh processes too, the short one at some.
#include "faults/Operations.h"
#include "kit/Allocations.h"
#include "kit/Children.h"
#include "kit/Policies.h"

#include <gtest/gtest.h>

#include <sys/mman.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace Tervane::Math::Faults {

std::size_t length = 0;

std::vector<double> values(std::size_t n, int seed) {
    std::vector<double> result(n);
    for (std::size_t i = 0; i < n; ++i)
        result[i] = static_cast<double>((i * 7 + static_cast<std::size_t>(seed) * 3) % 11 + 1);
    return result;
}

Vector2 vector2(int seed) {
    return Vector2(values(length, seed).data(), length);
}

ComplexVector2 complex2(int seed) {
    return ComplexVector2::fromData(values(2 * length, seed).data(), 2 * length).value();
}

Vector vector(int seed) {
    return Vector(values(length, seed));
}

ComplexVector complexVector(int seed) {
    ComplexVector z;
    z.setData(values(2 * length, seed).data(), length);
    return z;
}

namespace {

/// Well conditioned where it is square.
template<class AnyMatrix>
AnyMatrix filled(std::size_t rows, std::size_t columns, int seed) {
    AnyMatrix m(rows, columns, 0.0);
    std::vector<double> const source = values(rows * columns, seed);
    std::copy(source.begin(), source.end(), m.data());
    for (std::size_t i = 0; i < std::min(rows, columns); ++i)
        m[Index(i, i)] += 100.0;
    return m;
}

} // namespace

Matrix2 matrix2(std::size_t rows, std::size_t columns, int seed) {
    return filled<Matrix2>(rows, columns, seed);
}

Matrix matrix(std::size_t rows, std::size_t columns, int seed) {
    return filled<Matrix>(rows, columns, seed);
}

namespace {

bool isLongForm() {
    char const* const form = std::getenv("TVNMATH_TESTS");
    return form != nullptr && std::string_view(form) == "all";
}

/// Where in the table and among its points a child is: it may not live to tell.
struct Progress {
    std::size_t point;
    bool andAllAfter;
    std::size_t leastBytes;
    bool hasStruck;
};

struct Shared {
    Progress progress;
    std::size_t calls; ///< so many met a fault
};

Shared& shared() {
    static auto* const memory = static_cast<Shared*>(
        mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    return *memory;
}

Progress& progress() {
    return shared().progress;
}

std::string describeProgress() {
    Progress const& p = progress();
    return "allocation " + std::to_string(p.point) + (p.andAllAfter ? " and all after it" : " alone")
           + (p.leastBytes != 0 ? ", large ones only" : "");
}

bool areClose(std::vector<double> const& a, std::vector<double> const& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](double x, double y) { return std::abs(x - y) <= 1e-9 * (1.0 + std::abs(y)); });
}

int wrong(char const* what) {
    std::printf("%s\n", what);
    return 1;
}

/// Calls once without a fault.
/// @return 0 when it gives what is expected
int callRightly(Call& call, std::vector<double> const& expected) {
    System::ErrorCode error;
    try {
        call.perform(error);
    } catch (...) {
        return wrong("a call with enough memory throws");
    }
    if (call.error() || error.hasError())
        return wrong("a call with enough memory fails");
    int const result = areClose(call.numbers(), expected) ? 0 : wrong("a call with enough memory is wrong");
    call.discard();
    return result;
}

/// What became of a call that met a fault.
enum class End { Succeeded, Threw, ReturnedError, SetError };

bool isPromisedError(System::ErrorCode2 const& error) {
    // A transform tells which of oneMKL's calls failed, by whichever status it gave.
    return error == System::ErrorCode2(-1, System::system_error_category())
           || &error.category() == &fft_error_category();
}

/// Calls once while the fault is set, looks at what comes of it, and calls again.
int callAtFault(Operation const& operation, std::vector<double> const& expected) {
    Progress& at = progress();
    std::unique_ptr<Call> const call = operation.prepare();
    System::ErrorCode error;
    End end = End::Succeeded;
    bool isBadAlloc = false;
    {
        TestKit::AllocationCounter const withoutKeptStorage;
        using Faults = TestKit::FaultyHeap::Faults;
        TestKit::FaultyHeap const heap(at.point, at.andAllAfter ? Faults::AllFromThere : Faults::One,
                                       at.leastBytes);
        try {
            call->perform(error);
        } catch (std::bad_alloc const&) {
            end = End::Threw;
            isBadAlloc = true;
        } catch (...) {
            end = End::Threw;
        }
        at.hasStruck = heap.count() >= at.point;
        shared().calls += at.hasStruck ? 1 : 0;
    }
    if (end != End::Threw && call->error())
        end = End::ReturnedError;
    else if (end != End::Threw && error.hasError())
        end = End::SetError;

    switch (end) {
    case End::Succeeded: {
        std::vector<double> const numbers = call->numbers();
        bool const isAsMade = std::all_of(numbers.begin(), numbers.end(), [](double x) { return x == 0.0; });
        if (!areClose(numbers, expected)
            && !(operation.promise == Promise::LeavesResult && isAsMade && at.hasStruck))
            return wrong("the result is wrong");
        break;
    }
    case End::Threw:
        if (!isBadAlloc)
            return wrong("something else than std::bad_alloc is thrown");
        if (operation.promise == Promise::ReturnsError)
            return wrong("an exception leaves an operation that returns errors");
        if (operation.promise == Promise::SetsError && !error.hasError())
            return wrong("an exception leaves before the error is set");
        if (operation.promise == Promise::LeavesResult && error.hasError())
            return wrong("an error is set that is never to be");
        break;
    case End::ReturnedError:
        if (operation.promise != Promise::ReturnsError || !isPromisedError(*call->error()))
            return wrong("another error than promised is returned");
        break;
    case End::SetError:
        if (operation.promise != Promise::SetsError)
            return wrong("an error is set that is never to be");
        break;
    }
    call->discard();
    if (end != End::Succeeded && !at.hasStruck)
        return wrong("it fails although no allocation did");
    if (end != End::Succeeded && operation.arguments == Arguments::Kept)
        if (int const result = callRightly(*call, expected); result != 0)
            return result;
    return callRightly(*operation.prepare(), expected);
}

/// What the operation gives in a process of its own, as numbers in text.
std::vector<double> referenceOf(Operation const& operation) {
    auto const outcome = TestKit::runInChild([&] {
        std::unique_ptr<Call> const call = operation.prepare();
        System::ErrorCode error;
        call->perform(error);
        if (call->error() || error.hasError())
            return 1;
        for (double const x : call->numbers())
            std::printf("%a\n", x);
        return 0;
    });
    EXPECT_EQ(outcome.exitCode, 0) << operation.name << " without a fault: " << describe(outcome);
    std::vector<double> numbers;
    char const* at = outcome.printed.c_str();
    for (char* end = nullptr; *at != '\0'; at = end + 1)
        numbers.push_back(std::strtod(at, &end));
    return numbers;
}

/// Blocks of elements of the operations on vectors are at least so large, and little else is.
std::size_t largeBlock() {
    return length * sizeof(double);
}

constexpr std::size_t mostPoints = 2000;

/// A leak grows with every call. Without one the heap grows for a few, since it keeps small blocks that were
/// released.
constexpr int roundsOfALeak = 12;

/// Every point, in one process that has performed the operation before.
int walkAllPoints(Operation const& operation, std::vector<double> const& expected, bool mayCompareHeap) {
    if (int const result = callRightly(*operation.prepare(), expected); result != 0)
        return result;
    for (std::size_t const leastBytes : {std::size_t(0), largeBlock()})
        for (bool const andAllAfter : {false, true})
            for (std::size_t point = 1; point < mostPoints; ++point) {
                std::size_t inUse = 0;
                bool hasGrown = true;
                for (int round = 0; round < 3 || (mayCompareHeap && hasGrown); ++round) {
                    if (round == roundsOfALeak)
                        return wrong("memory leaks");
                    progress() = {point, andAllAfter, leastBytes, false};
                    if (int const result = callAtFault(operation, expected); result != 0)
                        return result;
                    std::size_t const before = std::exchange(inUse, TestKit::heapInUse());
                    hasGrown = inUse > before;
                }
                if (!progress().hasStruck)
                    break;
            }
    return 0;
}

/// One point in a process that has not performed the operation before.
/// @param crashesLeft how many crashes of the parallel runtime's start are still put up with: it calls
///        dlopen, in which the C library follows a null pointer when memory ends at one certain allocation
/// @return whether an allocation failed, so that there may be more points
bool lookAtPointCold(Operation const& operation, std::vector<double> const& expected, std::size_t point,
                     bool andAllAfter, int& crashesLeft) {
    progress() = {point, andAllAfter, 0, false};
    auto const outcome = TestKit::runInChild([&] { return callAtFault(operation, expected); }, 10);
    if (crashesLeft > 0 && andAllAfter && outcome.signal == SIGSEGV && outcome.printed.empty()) {
        --crashesLeft;
        return true;
    }
    EXPECT_TRUE(outcome.isClean()) << operation.name << " in a fresh process, " << describeProgress() << ": "
                                   << describe(outcome);
    return progress().hasStruck;
}

/// The points that the short form looks at in fresh processes: what is used first is made first.
constexpr std::size_t firstPoints[] = {1, 2, 3, 5, 9};

void lookCold(Operation const& operation, std::vector<double> const& expected,
              AlgorithmExecutionPolicy policy) {
    int crashesLeft = isLongForm() && policy != Inline ? 1 : 0;
    for (bool const andAllAfter : {false, true}) {
        // While it starts, the OpenMP runtime ends the process or hangs when memory fails that was there just
        // before. That it is not there at all is found out first.
        if (operation.startsOpenMP)
            lookAtPointCold(operation, expected, 1, andAllAfter, crashesLeft);
        else if (isLongForm())
            for (std::size_t point = 1; point < mostPoints; ++point) {
                if (!lookAtPointCold(operation, expected, point, andAllAfter, crashesLeft))
                    break;
            }
        else
            for (std::size_t const point : firstPoints)
                if (!lookAtPointCold(operation, expected, point, andAllAfter, crashesLeft))
                    break;
    }
}

using AddOperations = void (*)(Table&);

/// Which operations to look at: those with TVNMATH_FAULTS_ONLY in their name, for a look at one; and of these
/// the K-th of every N where TVNMATH_FAULTS_PART is K/N, for a long run in parts.
class Selection {
public:
    Selection() {
        char const* const part = std::getenv("TVNMATH_FAULTS_PART");
        if (part == nullptr)
            return;
        if (std::sscanf(part, "%zu/%zu", &_part, &_parts) != 2 || _part < 1 || _part > _parts)
            throw std::runtime_error("TVNMATH_FAULTS_PART is to be K/N");
    }

    bool takes(std::string const& name) {
        if (_only != nullptr && name.find(_only) == std::string::npos)
            return false;
        return _seen++ % _parts + 1 == _part;
    }

private:
    char const* _only = std::getenv("TVNMATH_FAULTS_ONLY");
    std::size_t _part = 1, _parts = 1, _seen = 0;
};

void look(AlgorithmExecutionPolicy policy, AddOperations addOperations) {
    if (!TestKit::FailingAllocations::areSupported())
        GTEST_SKIP() << "the sanitizers' heap cannot be made to fail";
    // The parallel policies spread what costs no more than an addition from some 30,000 elements on.
    length = policy == Inline ? 600 : 40000;
    Table table;
    addOperations(table);
    TestKit::PolicyScope const scope(policy);
    Selection selection;
    std::size_t operations = 0;
    shared().calls = 0;
    for (Operation const& operation : table.take()) {
        if (!selection.takes(operation.name))
            continue;
        ++operations;
        std::vector<double> const expected = referenceOf(operation);
        // A failed transform of the current generation keeps its descriptor, and workers take memory when
        // they like.
        bool const mayCompareHeap =
            policy == Inline && !operation.startsOpenMP && operation.name.find("fft") == std::string::npos;
        auto const warm =
            TestKit::runInChild([&] { return walkAllPoints(operation, expected, mayCompareHeap); }, 120);
        // The OpenMP runtime's own requests it does not survive: it says so and ends the process.
        bool const isRuntimesEnd =
            operation.startsOpenMP && warm.printed.find("OMP: Error") != std::string::npos;
        EXPECT_TRUE(warm.isClean() || isRuntimesEnd)
            << operation.name << ", " << describeProgress() << ": " << describe(warm);
        lookCold(operation, expected, policy);
    }
    EXPECT_GT(operations, 0U);
    testing::Test::RecordProperty("operations", static_cast<int>(operations));
    testing::Test::RecordProperty("calls_that_met_a_fault", static_cast<int>(shared().calls));
}

TEST(Faults, CurrentOperationsInline) {
    look(Inline, addCurrentOperations);
}

TEST(Faults, CurrentOperationsInParallel) {
    look(ParallelUnsequenced, addCurrentOperations);
}

TEST(Faults, LegacyOperationsInline) {
    look(Inline, addLegacyOperations);
}

TEST(Faults, LegacyOperationsInParallel) {
    look(ParallelUnsequenced, addLegacyOperations);
}

TEST(Faults, SupportOperations) {
    look(Inline, addSupportOperations);
}

} // namespace

} // namespace Tervane::Math::Faults

// What happens when memory runs out. This program has heap functions of its own, which fail from a given
// allocation on, under the sanitizers as well, so that nothing may leak on the way.
#include <System/ErrorCode.h>
#include <System/Exceptions.h>
#include <System/Expected.h>
#include <System/Guard.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <stdexcept>
#include <utility>

namespace {

/// The number of allocations that succeed before all fail; none fails when it is negative.
thread_local int allocationsBeforeFailure = -1;

/// Lets every allocation after the first few fail as long as it lives.
class FailingAllocations {
public:
    explicit FailingAllocations(int successes = 0) { allocationsBeforeFailure = successes; }
    FailingAllocations(FailingAllocations const&) = delete;
    FailingAllocations& operator=(FailingAllocations const&) = delete;
    ~FailingAllocations() { allocationsBeforeFailure = -1; }
};

} // namespace

// Not inlined: the compiler would take what it then sees for a mismatch of allocation and release.
[[gnu::noinline]] void* operator new(std::size_t size) {
    if (allocationsBeforeFailure > 0) {
        --allocationsBeforeFailure;
    } else if (allocationsBeforeFailure == 0) {
        throw std::bad_alloc();
    }
    if (void* const memory = std::malloc(size != 0 ? size : 1)) {
        return memory;
    }
    throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}

[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

// The array forms would end here by themselves, were it not for the sanitizers, which bring their own.
[[gnu::noinline]] void* operator new[](std::size_t size) {
    return ::operator new(size);
}

[[gnu::noinline]] void operator delete[](void* memory) noexcept {
    std::free(memory);
}

[[gnu::noinline]] void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace Tervane::System {

namespace {

/// Calls @p function while allocations fail after the first @p successes, and gives what it returns.
template<class Function>
auto withoutMemory(Function&& function, int successes = 0) {
    FailingAllocations const failing(successes);
    return std::forward<Function>(function)();
}

/// Whether @p function throws `std::bad_alloc` while all allocations fail.
template<class Function>
bool runsOutOfMemory(Function&& function) {
    FailingAllocations const failing;
    try {
        std::forward<Function>(function)();
    } catch (std::bad_alloc const&) {
        return true;
    }
    return false;
}

/// Allocates in a way that the compiler must not leave out.
void allocate() {
    ::operator delete(::operator new(1));
}

TEST(AllocationFailure, HeapFunctionsFailOnDemand) {
    EXPECT_TRUE(runsOutOfMemory(allocate));
    EXPECT_NO_THROW(allocate());
}

// First in this program that needs a category, so the category is made while there is no memory.
TEST(AllocationFailure, GuardFindsItsErrorWithoutMemory) {
    auto const result = withoutMemory([] { return guard<void>(allocate); });
    ASSERT_FALSE(result.has_value());
    EXPECT_EQ(result.error(), ErrorCode2(-1, system_error_category()));
}

TEST(AllocationFailure, RaisingAnErrorWithoutMemoryIsUnclassified) {
    auto const result =
        withoutMemory([] { return guard<void>([] { throw SystemError(std::errc::invalid_argument); }); });
    ASSERT_FALSE(result.has_value());
    EXPECT_EQ(result.error(), ErrorCode2(-1, system_error_category()));
}

TEST(AllocationFailure, ToStringFailsWithAnErrorAndAllocatesOnce) {
    auto const failed = withoutMemory([] { return toString(12); });
    ASSERT_FALSE(failed.has_value());
    EXPECT_EQ(failed.error(), ErrorCode2(-1, system_error_category()));

    auto const text = withoutMemory([] { return toString(12); }, 1);
    ASSERT_TRUE(text.has_value());
    EXPECT_EQ(*text, u8"12");
}

TEST(AllocationFailure, Utf8ToUtf8FailsWithAnError) {
    auto const failed = withoutMemory([] { return utf8ToUtf8("text", 4); });
    ASSERT_FALSE(failed.has_value());
    EXPECT_EQ(failed.error(), ErrorCode2(-1, system_error_category()));

    EXPECT_TRUE(withoutMemory([] { return utf8ToUtf8("", 0); }).has_value());
    auto const malformed = withoutMemory([] { return utf8ToUtf8("\xFF", 1); });
    ASSERT_FALSE(malformed.has_value());
    EXPECT_EQ(malformed.error(), ErrorCode2(std::errc::illegal_byte_sequence));
}

TEST(AllocationFailure, ConcatenationLeavesItsOperand) {
    String2 text = u8"text";
    EXPECT_TRUE(runsOutOfMemory([&] { (void)(std::move(text) + u8"!"); }));
    EXPECT_EQ(text, u8"text");
    EXPECT_TRUE(runsOutOfMemory([&] { (void)(u8"!" + std::move(text)); }));
    EXPECT_EQ(text, u8"text");
}

TEST(AllocationFailure, AssignmentLeavesAString) {
    String2 const source = u8"source";
    String2 target = u8"target";
    EXPECT_TRUE(runsOutOfMemory([&] { target = source; }));
    EXPECT_EQ(target, u8"target");
}

TEST(AllocationFailure, AssignmentOfAValueLeavesAnError) {
    Expected<String2, ErrorCode2> const source = String2(u8"text");
    Expected<String2, ErrorCode2> target = std::errc::timed_out;
    EXPECT_TRUE(runsOutOfMemory([&] { target = source; }));
    ASSERT_FALSE(target.has_value());
    EXPECT_EQ(target.error(), ErrorCode2(std::errc::timed_out));
}

TEST(AllocationFailure, DescribingAnExceptionWithoutMemoryLeavesOutItsText) {
    ErrorCode code;
    withoutMemory([&] { code.assign(std::bad_alloc()); });
    EXPECT_TRUE(code.hasError());
    EXPECT_FALSE(code.isUnknown());
    EXPECT_EQ(code.code(), -1);
    EXPECT_EQ(code.category(), nullptr);
    EXPECT_EQ(code.message(), u8"");
}

TEST(AllocationFailure, AssignmentLeavesAnErrorCode) {
    ErrorCode described;
    described.assign(std::runtime_error("burnt"));
    ErrorCode target;
    target.assignUnknown();
    EXPECT_TRUE(runsOutOfMemory([&] { target = described; }));
    EXPECT_TRUE(target.isUnknown());
    EXPECT_TRUE(runsOutOfMemory([&] { target.assign(described); }));
    EXPECT_TRUE(target.isUnknown());
    EXPECT_EQ(target.message(), u8"unknown error");
}

} // namespace

} // namespace Tervane::System

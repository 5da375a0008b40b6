// Modules that were compiled apart call virtual operations by their place, so the order is part of the
// interface.
#include <System/ErrorCode.h>
#include <System/ErrorCode2.h>
#include <System/Exceptions.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

#if defined(__x86_64__)

namespace Tervane::System {

namespace {

/// The place of a virtual operation in the table. The destructor has two entries, so what follows it has
/// place 2. A pointer to a virtual member holds the offset in the table, in bytes, plus one.
template<class Member>
std::size_t slotOf(Member member) {
    std::size_t representation = 0;
    std::memcpy(&representation, &member, sizeof representation);
    return (representation - 1) / sizeof(void*);
}

TEST(VirtualSlots, CurrentCategoryHasMessageThenName) {
    EXPECT_EQ(slotOf(&ErrorCategory2::message), 2U);
    EXPECT_EQ(slotOf(&ErrorCategory2::name), 3U);
}

TEST(VirtualSlots, FormerCategoryHasMessageThenName) {
    EXPECT_EQ(slotOf(&ErrorCategory::message), 2U);
    EXPECT_EQ(slotOf(&ErrorCategory::name), 3U);
}

TEST(VirtualSlots, ExceptionsHaveWhatAfterTheDestructor) {
    EXPECT_EQ(slotOf(&Exception2::what), 2U);
    EXPECT_EQ(slotOf(&bad_expected_access<void>::what), 2U);
    EXPECT_EQ(slotOf(&bad_expected_access<ErrorCode2>::what), 2U);
}

} // namespace

} // namespace Tervane::System

#endif

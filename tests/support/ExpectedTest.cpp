#include "TestCategory.h"
#include "Tracked.h"

#include <System/Expected.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace Tervane::System {

// Every member of the template must be instantiable for a type that is copied and moved.
template class Expected<Testing::Tracked, ErrorCode2>;
template class Expected<int*, ErrorCode2>;

namespace {

using Testing::Fruit;
using Testing::Tracked;
using Testing::TrackedCounts;
using Testing::TrackedFailure;
using Result = Expected<Tracked, ErrorCode2>;
using VoidResult = Expected<void, ErrorCode2>;

enum class Unregistered { Enumerator };

struct NotDefault {
    explicit NotDefault(int) {}
};

struct alignas(64) Overaligned {
    char byte = 0;
};

// Results come implicitly from what they hold, and from nothing else.
static_assert(std::is_convertible_v<Tracked const&, Result>);
static_assert(std::is_convertible_v<Tracked, Result>);
static_assert(std::is_convertible_v<ErrorCode2 const&, Result>);
static_assert(std::is_convertible_v<ErrorCode2, Result>);
static_assert(std::is_convertible_v<Fruit, Result>);
static_assert(std::is_convertible_v<std::errc, Result>);
static_assert(std::is_convertible_v<std::io_errc, Result>);
static_assert(std::is_convertible_v<std::future_errc, Result>);
static_assert(!std::is_constructible_v<Result, Unregistered>);
static_assert(!std::is_convertible_v<int, Result>);
static_assert(std::is_convertible_v<ErrorCode2, VoidResult>);
static_assert(std::is_convertible_v<Fruit, VoidResult>);
static_assert(!std::is_constructible_v<VoidResult, Unregistered>);
static_assert(!std::is_constructible_v<VoidResult, int>);

// A result is tested, not converted.
static_assert(std::is_constructible_v<bool, Result const&> && !std::is_convertible_v<Result, bool>);
static_assert(std::is_constructible_v<bool, VoidResult const&> && !std::is_convertible_v<VoidResult, bool>);

// A result has no default where its value has none.
static_assert(std::is_default_constructible_v<Result>);
static_assert(!std::is_default_constructible_v<Expected<NotDefault, ErrorCode2>>);

// Moves promise not to throw exactly where the value's do.
static_assert(!std::is_nothrow_move_constructible_v<Result> && !std::is_nothrow_move_assignable_v<Result>);
static_assert(std::is_nothrow_move_constructible_v<Expected<String2, ErrorCode2>>);
static_assert(std::is_nothrow_move_assignable_v<Expected<String2, ErrorCode2>>);
static_assert(!std::is_nothrow_copy_constructible_v<Expected<String2, ErrorCode2>>);
static_assert(std::is_nothrow_copy_constructible_v<Expected<int*, ErrorCode2>>);
static_assert(
    std::is_nothrow_move_constructible_v<VoidResult> && std::is_nothrow_move_assignable_v<VoidResult>);

template<class Holder, class Value>
constexpr bool accessFormsMatch = std::is_same_v<decltype(*std::declval<Holder&>()), Value&>&&
    std::is_same_v<decltype(*std::declval<Holder const&>()),
                   Value const&>&& std::is_same_v<decltype(*std::declval<Holder>()), Value&&>&&
        std::is_same_v<decltype(*std::declval<Holder const>()),
                       Value const&&>&& std::is_same_v<decltype(std::declval<Holder&>().value()), Value&>&&
            std::is_same_v<decltype(std::declval<Holder const&>().value()),
                           Value const&>&& std::is_same_v<decltype(std::declval<Holder>().value()), Value&&>&&
                std::is_same_v<decltype(std::declval<Holder const>().value()), Value const&&>&&
                    std::is_same_v<decltype(std::declval<Holder&>().operator->()), Value*>&&
                        std::is_same_v<decltype(std::declval<Holder const&>().operator->()), Value const*>;
static_assert(accessFormsMatch<Result, Tracked>);
static_assert(accessFormsMatch<Expected<String2, ErrorCode2>, String2>);
static_assert(accessFormsMatch<Expected<int*, ErrorCode2>, int*>);

template<class Holder>
constexpr bool errorFormsMatch = std::is_same_v<decltype(std::declval<Holder&>().error()), ErrorCode2&>&&
    std::is_same_v<decltype(std::declval<Holder const&>().error()), ErrorCode2 const&>&&
        std::is_same_v<decltype(std::declval<Holder>().error()), ErrorCode2&&>&&
            std::is_same_v<decltype(std::declval<Holder const>().error()), ErrorCode2 const&&>;
static_assert(errorFormsMatch<Result>);
static_assert(errorFormsMatch<VoidResult>);
static_assert(errorFormsMatch<bad_expected_access<ErrorCode2>>);

static_assert(std::is_void_v<decltype(std::declval<VoidResult&>().value())>);
static_assert(std::is_void_v<decltype(std::declval<VoidResult const&>().value())>);
static_assert(std::is_void_v<decltype(std::declval<VoidResult>().value())>);
static_assert(std::is_void_v<decltype(std::declval<VoidResult const>().value())>);

ErrorCode2 const pear = Fruit::Pear;
ErrorCode2 const apple = Fruit::Apple;

/// Fails if an object of `Tracked` outlives a test or is destroyed twice.
class ExpectedTest : public testing::Test {
protected:
    void SetUp() override { Tracked::reset(); }
    void TearDown() override {
        EXPECT_TRUE(Tracked::alive.empty());
        EXPECT_FALSE(Tracked::misused);
        Tracked::alive.clear();
    }
};

using ExpectedConstruction = ExpectedTest;
using ExpectedAssignment = ExpectedTest;
using ExpectedSwap = ExpectedTest;
using ExpectedAccess = ExpectedTest;

TEST_F(ExpectedConstruction, DefaultHoldsADefaultConstructedValue) {
    Result const result;
    EXPECT_TRUE(result.has_value());
    EXPECT_EQ(result->id(), Tracked::defaultId);
    EXPECT_EQ(Tracked::counts, TrackedCounts{});

    Expected<int*, ErrorCode2> const pointer;
    EXPECT_TRUE(pointer.has_value());
    EXPECT_EQ(*pointer, nullptr);
}

TEST_F(ExpectedConstruction, ValueIsCopiedOnce) {
    Tracked const value(3);
    Result const result = value;
    EXPECT_TRUE(result.has_value());
    EXPECT_EQ(result->id(), 3);
    EXPECT_EQ(Tracked::counts, TrackedCounts{.copies = 1});
}

TEST_F(ExpectedConstruction, RvalueIsMovedOnce) {
    Tracked value(3);
    Result const result = std::move(value);
    EXPECT_TRUE(result.has_value());
    EXPECT_EQ(result->id(), 3);
    EXPECT_EQ(value.id(), Tracked::movedFromId);
    EXPECT_EQ(Tracked::counts, TrackedCounts{.moves = 1});
}

TEST_F(ExpectedConstruction, ErrorMakesAnErrorResultWithoutAValue) {
    Result const copied = pear;
    EXPECT_FALSE(copied.has_value());
    EXPECT_EQ(copied.error(), pear);

    Result const moved = ErrorCode2(pear);
    EXPECT_FALSE(moved.has_value());
    EXPECT_EQ(moved.error(), pear);
    EXPECT_EQ(Tracked::counts, TrackedCounts{});
}

TEST_F(ExpectedConstruction, EnumeratorMakesTheErrorOfItsCategory) {
    EXPECT_EQ(Result(Fruit::Pear).error(), pear);
    EXPECT_EQ(Result(std::errc::invalid_argument).error(),
              ErrorCode2(static_cast<int>(std::errc::invalid_argument), generic_error_category()));
    EXPECT_EQ(Result(std::io_errc::stream).error(),
              ErrorCode2(static_cast<int>(std::io_errc::stream), iostream_error_category()));
    EXPECT_EQ(Result(std::future_errc::no_state).error(),
              ErrorCode2(static_cast<int>(std::future_errc::no_state), future_error_category()));
    EXPECT_FALSE(Result(Fruit::Apple).has_value());
    EXPECT_FALSE(VoidResult(Fruit::Apple).has_value());
}

TEST_F(ExpectedConstruction, CopyTakesTheStateAndCopiesTheContent) {
    Result const value = Tracked(4);
    Result const error = pear;
    Tracked::reset();

    Result const valueCopy(value);
    EXPECT_TRUE(valueCopy.has_value());
    EXPECT_EQ(valueCopy->id(), 4);
    EXPECT_EQ(value->id(), 4);
    EXPECT_EQ(Tracked::counts, TrackedCounts{.copies = 1});

    Result const errorCopy(error);
    EXPECT_FALSE(errorCopy.has_value());
    EXPECT_EQ(errorCopy.error(), pear);
    EXPECT_EQ(error.error(), pear);
    EXPECT_EQ(Tracked::counts, TrackedCounts{.copies = 1});
}

TEST_F(ExpectedConstruction, MoveTakesTheContentAndLeavesTheSourcesFlag) {
    Result value = Tracked(4);
    Result error = pear;
    Tracked::reset();

    Result const movedValue(std::move(value));
    EXPECT_TRUE(movedValue.has_value());
    EXPECT_EQ(movedValue->id(), 4);
    EXPECT_TRUE(value.has_value());
    EXPECT_EQ(value->id(), Tracked::movedFromId);
    EXPECT_EQ(Tracked::counts, TrackedCounts{.moves = 1});

    Result const movedError(std::move(error));
    EXPECT_FALSE(movedError.has_value());
    EXPECT_EQ(movedError.error(), pear);
    EXPECT_FALSE(error.has_value());
    EXPECT_EQ(Tracked::counts, TrackedCounts{.moves = 1});
}

TEST_F(ExpectedConstruction, ThrowingCopyLeavesNoObjectBehind) {
    Result const value = Tracked(4);
    Tracked::copyThrows = true;
    EXPECT_THROW((void)Result(value), TrackedFailure);
    EXPECT_EQ(value->id(), 4);
}

TEST_F(ExpectedConstruction, DestructorDestroysTheAliveAlternativeOnly) {
    { Result const value = Result(); }
    EXPECT_EQ(Tracked::counts, TrackedCounts{.destructions = 1});
    Tracked::reset();
    { Result const error = pear; }
    EXPECT_EQ(Tracked::counts, TrackedCounts{});
}

TEST_F(ExpectedConstruction, ResultMayHoldAPointer) {
    int number = 5;
    Expected<int*, ErrorCode2> const result = &number;
    EXPECT_EQ(*result, &number);
    EXPECT_EQ(result.value(), &number);
    Expected<int*, ErrorCode2> const error = pear;
    EXPECT_FALSE(error);
}

TEST_F(ExpectedConstruction, ResultMayHoldAValueThatOnlyMoves) {
    Expected<std::unique_ptr<int>, ErrorCode2> result = std::make_unique<int>(5);
    Expected<std::unique_ptr<int>, ErrorCode2> other = std::move(result);
    EXPECT_TRUE(result.has_value());
    EXPECT_EQ(*result, nullptr);
    std::unique_ptr<int> const owner = *std::move(other);
    EXPECT_EQ(*owner, 5);
}

TEST_F(ExpectedAssignment, ValueToValueAssigns) {
    Result target = Tracked(1);
    Result source = Tracked(2);
    Tracked::reset();
    target = source;
    EXPECT_TRUE(target.has_value());
    EXPECT_EQ(target->id(), 2);
    EXPECT_EQ(source->id(), 2);
    EXPECT_EQ(Tracked::counts, TrackedCounts{.copyAssignments = 1});

    Tracked::reset();
    target = std::move(source);
    EXPECT_EQ(target->id(), 2);
    EXPECT_TRUE(source.has_value());
    EXPECT_EQ(source->id(), Tracked::movedFromId);
    EXPECT_EQ(Tracked::counts, TrackedCounts{.moveAssignments = 1});
}

TEST_F(ExpectedAssignment, ErrorToValueDestroysTheValue) {
    Result source = pear;
    {
        Result target = Tracked(1);
        Tracked::reset();
        target = source;
        EXPECT_FALSE(target.has_value());
        EXPECT_EQ(target.error(), pear);
        EXPECT_EQ(Tracked::counts, TrackedCounts{.destructions = 1});
    }
    EXPECT_EQ(Tracked::counts, TrackedCounts{.destructions = 1});
    {
        Result target = Tracked(1);
        Tracked::reset();
        target = std::move(source);
        EXPECT_FALSE(target.has_value());
        EXPECT_EQ(target.error(), pear);
        EXPECT_EQ(Tracked::counts, TrackedCounts{.destructions = 1});
    }
    EXPECT_FALSE(source.has_value());
}

TEST_F(ExpectedAssignment, ValueToErrorCopiesFirstAndThenMovesIntoPlace) {
    Result const source = Tracked(2);
    Result target = pear;
    Tracked::reset();
    target = source;
    EXPECT_TRUE(target.has_value());
    EXPECT_EQ(target->id(), 2);
    EXPECT_EQ(source->id(), 2);
    EXPECT_EQ(Tracked::counts, (TrackedCounts{.copies = 1, .moves = 1, .destructions = 1}));
}

TEST_F(ExpectedAssignment, MovedValueToErrorMovesOnly) {
    Result source = Tracked(2);
    Result target = pear;
    Tracked::reset();
    target = std::move(source);
    EXPECT_TRUE(target.has_value());
    EXPECT_EQ(target->id(), 2);
    EXPECT_TRUE(source.has_value());
    EXPECT_EQ(source->id(), Tracked::movedFromId);
    EXPECT_EQ(Tracked::counts, (TrackedCounts{.moves = 2, .destructions = 1}));
}

TEST_F(ExpectedAssignment, ErrorToErrorAssigns) {
    Result target = apple;
    Result source = pear;
    target = source;
    EXPECT_FALSE(target.has_value());
    EXPECT_EQ(target.error(), pear);
    target = Result(apple);
    EXPECT_FALSE(target.has_value());
    EXPECT_EQ(target.error(), apple);
    EXPECT_EQ(Tracked::counts, TrackedCounts{});
}

TEST_F(ExpectedAssignment, ToItselfChangesNothing) {
    Result value = Tracked(1);
    Result& sameValue = value;
    value = sameValue;
    EXPECT_TRUE(value.has_value());
    EXPECT_EQ(value->id(), 1);
    value = std::move(sameValue);
    EXPECT_TRUE(value.has_value());
    EXPECT_EQ(value->id(), 1);

    Result error = pear;
    Result& sameError = error;
    error = sameError;
    EXPECT_EQ(error.error(), pear);
    error = std::move(sameError);
    EXPECT_FALSE(error.has_value());
    EXPECT_EQ(error.error(), pear);
}

TEST_F(ExpectedAssignment, ThrowingCopyLeavesAnErrorIntact) {
    Result const source = Tracked(2);
    Result target = pear;
    Tracked::copyThrows = true;
    EXPECT_THROW(target = source, TrackedFailure);
    EXPECT_FALSE(target.has_value());
    EXPECT_EQ(target.error(), pear);
    EXPECT_EQ(source->id(), 2);
}

TEST_F(ExpectedAssignment, ThrowingMoveIntoPlaceLeavesAnErrorIntact) {
    Result source = Tracked(2);
    Result target = pear;
    Tracked::movesBeforeFailure = 0;
    EXPECT_THROW(target = source, TrackedFailure);
    EXPECT_FALSE(target.has_value());
    EXPECT_EQ(target.error(), pear);

    Tracked::movesBeforeFailure = 1;
    EXPECT_THROW(target = std::move(source), TrackedFailure);
    EXPECT_FALSE(target.has_value());
    EXPECT_EQ(target.error(), pear);
}

TEST_F(ExpectedAssignment, ThrowingCopyAssignmentLeavesAValue) {
    Result const source = Tracked(2);
    Result target = Tracked(1);
    Tracked::copyAssignmentThrows = true;
    EXPECT_THROW(target = source, TrackedFailure);
    EXPECT_TRUE(target.has_value());
    EXPECT_EQ(target->id(), 1);
}

/// Owns a result of its own kind and spoils it when it dies, so that no one can read it afterwards unnoticed.
struct Parent {
    explicit Parent(ErrorCode2 const& error) : child(std::make_shared<Expected<Parent, ErrorCode2>>(error)) {}
    Parent(Parent const&) = default;
    Parent(Parent&&) = default;
    ~Parent() {
        if (child.use_count() == 1) {
            *child = std::errc::timed_out;
        }
    }
    Parent& operator=(Parent const&) = default;
    Parent& operator=(Parent&&) = default;

    std::shared_ptr<Expected<Parent, ErrorCode2>> child;
};

// Destroying the target's value destroys the source here, which shows that the copy comes first.
TEST_F(ExpectedAssignment, SourceMayBeOwnedByTheValueThatItReplaces) {
    Expected<Parent, ErrorCode2> target = Parent(pear);
    target = *target->child;
    EXPECT_FALSE(target.has_value());
    EXPECT_EQ(target.error(), pear);

    target = Parent(apple);
    target = std::move(*target->child);
    EXPECT_FALSE(target.has_value());
    EXPECT_EQ(target.error(), apple);
}

TEST_F(ExpectedSwap, Values) {
    Result left = Tracked(1);
    Result right = Tracked(2);
    left.swap(right);
    EXPECT_TRUE(left.has_value());
    EXPECT_TRUE(right.has_value());
    EXPECT_EQ(left->id(), 2);
    EXPECT_EQ(right->id(), 1);
    EXPECT_EQ(Tracked::counts.copies, 0);
    EXPECT_EQ(Tracked::counts.copyAssignments, 0);
}

TEST_F(ExpectedSwap, ValueWithError) {
    Result left = Tracked(1);
    Result right = pear;
    Tracked::reset();
    left.swap(right);
    EXPECT_FALSE(left.has_value());
    EXPECT_TRUE(right.has_value());
    EXPECT_EQ(left.error(), pear);
    EXPECT_EQ(right->id(), 1);
    EXPECT_EQ(Tracked::counts, (TrackedCounts{.moves = 1, .destructions = 1}));
}

TEST_F(ExpectedSwap, ErrorWithValue) {
    Result left = pear;
    Result right = Tracked(1);
    Tracked::reset();
    left.swap(right);
    EXPECT_TRUE(left.has_value());
    EXPECT_FALSE(right.has_value());
    EXPECT_EQ(left->id(), 1);
    EXPECT_EQ(right.error(), pear);
    EXPECT_EQ(Tracked::counts, (TrackedCounts{.moves = 1, .destructions = 1}));
}

TEST_F(ExpectedSwap, Errors) {
    Result left = pear;
    Result right = apple;
    left.swap(right);
    EXPECT_FALSE(left.has_value());
    EXPECT_FALSE(right.has_value());
    EXPECT_EQ(left.error(), apple);
    EXPECT_EQ(right.error(), pear);
}

TEST_F(ExpectedSwap, ThrowingMoveLeavesBothAsTheyWere) {
    Result left = Tracked(1);
    Result right = pear;
    Tracked::movesBeforeFailure = 0;
    EXPECT_THROW(left.swap(right), TrackedFailure);
    EXPECT_EQ(left.value().id(), 1);
    EXPECT_FALSE(right.has_value());
    EXPECT_EQ(right.error(), pear);
    EXPECT_THROW(right.swap(left), TrackedFailure);
    EXPECT_EQ(left.value().id(), 1);
    EXPECT_FALSE(right.has_value());
    EXPECT_EQ(right.error(), pear);
}

TEST_F(ExpectedAccess, FlagIsWhatBothTestsTell) {
    Result const value = Tracked(1);
    Result const error = pear;
    EXPECT_TRUE(value.has_value());
    EXPECT_TRUE(static_cast<bool>(value));
    EXPECT_FALSE(error.has_value());
    EXPECT_FALSE(static_cast<bool>(error));
}

TEST_F(ExpectedAccess, EveryFormRefersToTheValueInPlace) {
    Result result = Tracked(6);
    Result const& constant = result;
    Tracked::reset();
    Tracked const* const place = result.operator->();
    EXPECT_EQ(constant.operator->(), place);
    EXPECT_EQ(&*result, place);
    EXPECT_EQ(&*constant, place);
    EXPECT_EQ(&result.value(), place);
    EXPECT_EQ(&constant.value(), place);
    Tracked&& rvalue = *std::move(result);
    Tracked const&& constantRvalue = *std::move(constant);
    Tracked&& checkedRvalue = std::move(result).value();
    Tracked const&& checkedConstantRvalue = std::move(constant).value();
    EXPECT_EQ(&rvalue, place);
    EXPECT_EQ(&constantRvalue, place);
    EXPECT_EQ(&checkedRvalue, place);
    EXPECT_EQ(&checkedConstantRvalue, place);
    EXPECT_EQ(Tracked::counts, TrackedCounts{});
}

TEST_F(ExpectedAccess, RvalueFormsLetTheValueBeMovedOut) {
    Result result = Tracked(6);
    Tracked::reset();
    Tracked const moved = *std::move(result);
    EXPECT_EQ(moved.id(), 6);
    EXPECT_EQ(result->id(), Tracked::movedFromId);
    EXPECT_EQ(Tracked::counts, TrackedCounts{.moves = 1});

    Result const constant = Tracked(7);
    Tracked::reset();
    Tracked const copied = *std::move(constant);
    EXPECT_EQ(copied.id(), 7);
    EXPECT_EQ(Tracked::counts, TrackedCounts{.copies = 1});
}

TEST_F(ExpectedAccess, EveryErrorFormRefersToTheErrorInPlace) {
    Result result = pear;
    Result const& constant = result;
    ErrorCode2 const* const place = &result.error();
    ErrorCode2&& rvalue = std::move(result).error();
    ErrorCode2 const&& constantRvalue = std::move(constant).error();
    EXPECT_EQ(&constant.error(), place);
    EXPECT_EQ(&rvalue, place);
    EXPECT_EQ(&constantRvalue, place);
    result.error() = apple;
    EXPECT_EQ(constant.error(), apple);
}

/// Calls @p access, which must throw, and gives the error that the exception carries.
template<class Access>
ErrorCode2 errorThrownBy(Access access) {
    try {
        access();
    } catch (bad_expected_access<ErrorCode2> const& exception) {
        return exception.error();
    }
    ADD_FAILURE() << "nothing was thrown";
    return apple;
}

TEST_F(ExpectedAccess, ValueOfAnErrorThrowsACopyOfItInEveryForm) {
    Result result = pear;
    Result const& constant = result;
    EXPECT_EQ(errorThrownBy([&] { (void)result.value(); }), pear);
    EXPECT_EQ(errorThrownBy([&] { (void)constant.value(); }), pear);
    EXPECT_EQ(errorThrownBy([&] { (void)std::move(result).value(); }), pear);
    EXPECT_EQ(errorThrownBy([&] { (void)std::move(constant).value(); }), pear);
    EXPECT_FALSE(result.has_value());
    EXPECT_EQ(result.error(), pear);
    EXPECT_EQ(Tracked::counts, TrackedCounts{});
}

TEST(ExpectedVoid, DefaultIsSuccess) {
    VoidResult const result;
    EXPECT_TRUE(result.has_value());
    EXPECT_TRUE(static_cast<bool>(result));
}

TEST(ExpectedVoid, HoldsTheErrorItIsBuiltFrom) {
    VoidResult const copied = pear;
    VoidResult const moved = ErrorCode2(pear);
    VoidResult const enumerated = std::errc::timed_out;
    EXPECT_FALSE(copied.has_value());
    EXPECT_FALSE(static_cast<bool>(copied));
    EXPECT_EQ(copied.error(), pear);
    EXPECT_EQ(moved.error(), pear);
    EXPECT_EQ(enumerated.error(), ErrorCode2(std::errc::timed_out));
}

TEST(ExpectedVoid, CopiesMovesAndAssignsInEveryPairOfStates) {
    for (VoidResult const& source : {VoidResult(), VoidResult(pear)}) {
        VoidResult const copied(source);
        VoidResult scratch(source);
        VoidResult const moved(std::move(scratch));
        EXPECT_EQ(copied.has_value(), source.has_value());
        EXPECT_EQ(moved.has_value(), source.has_value());
        EXPECT_EQ(scratch.has_value(), source.has_value());
        for (VoidResult const& start : {VoidResult(), VoidResult(apple)}) {
            VoidResult byCopy(start);
            VoidResult byMove(start);
            byCopy = source;
            byMove = std::move(scratch);
            EXPECT_EQ(byCopy.has_value(), source.has_value());
            EXPECT_EQ(byMove.has_value(), source.has_value());
            if (!source) {
                EXPECT_EQ(copied.error(), pear);
                EXPECT_EQ(moved.error(), pear);
                EXPECT_EQ(byCopy.error(), pear);
                EXPECT_EQ(byMove.error(), pear);
            }
        }
    }
}

TEST(ExpectedVoid, AssignmentToItselfChangesNothing) {
    VoidResult error = pear;
    VoidResult& same = error;
    error = same;
    EXPECT_EQ(error.error(), pear);
    error = std::move(same);
    EXPECT_FALSE(error.has_value());
    EXPECT_EQ(error.error(), pear);
}

TEST(ExpectedVoid, SwapsInEveryPairOfStates) {
    VoidResult success;
    VoidResult error = pear;
    success.swap(error);
    EXPECT_FALSE(success.has_value());
    EXPECT_EQ(success.error(), pear);
    EXPECT_TRUE(error.has_value());
    success.swap(error);
    EXPECT_TRUE(success.has_value());
    EXPECT_FALSE(error.has_value());
    EXPECT_EQ(error.error(), pear);

    VoidResult other = apple;
    error.swap(other);
    EXPECT_EQ(error.error(), apple);
    EXPECT_EQ(other.error(), pear);

    VoidResult otherSuccess;
    success.swap(otherSuccess);
    EXPECT_TRUE(success.has_value());
    EXPECT_TRUE(otherSuccess.has_value());
}

TEST(ExpectedVoid, ValueDoesNothingOnSuccessAndThrowsTheError) {
    VoidResult success;
    EXPECT_NO_THROW(success.value());
    EXPECT_NO_THROW(std::as_const(success).value());
    EXPECT_NO_THROW(VoidResult().value());
    EXPECT_NO_THROW(std::move(std::as_const(success)).value());

    VoidResult error = pear;
    EXPECT_EQ(errorThrownBy([&] { error.value(); }), pear);
    EXPECT_EQ(errorThrownBy([&] { std::as_const(error).value(); }), pear);
    EXPECT_EQ(errorThrownBy([&] { std::move(error).value(); }), pear);
    EXPECT_EQ(errorThrownBy([&] { std::move(std::as_const(error)).value(); }), pear);
    EXPECT_FALSE(error.has_value());
    EXPECT_EQ(error.error(), pear);
}

TEST(ExpectedString2, MovesTheStringOutWithoutACopy) {
    Expected<String2, ErrorCode2> result = String2(u8"text");
    char8_t const* const bytes = result->data();
    String2 const text = *std::move(result);
    EXPECT_EQ(text.data(), bytes);
    EXPECT_TRUE(result.has_value());
    EXPECT_EQ(result->length(), 0U);
}

/// The flag, then one storage for both.
template<class T>
struct LayoutModel {
    bool flag;
    union {
        T value;
        ErrorCode2 error;
    };
};

template<class T>
class ExpectedLayout : public testing::Test {};
struct LayoutNames {
    template<class T>
    static std::string GetName(int index) {
        char const* const names[] = {"Char", "Pointer", "String2", "Tracked", "Overaligned"};
        return names[index];
    }
};
using LayoutTypes = testing::Types<char, int*, String2, Tracked, Overaligned>;
TYPED_TEST_SUITE(ExpectedLayout, LayoutTypes, LayoutNames);

TYPED_TEST(ExpectedLayout, FlagComesFirstThenTheSharedStorage) {
    using Typed = Expected<TypeParam, ErrorCode2>;
    static_assert(sizeof(bool) == 1);
    static_assert(sizeof(Typed) == sizeof(LayoutModel<TypeParam>));
    static_assert(alignof(Typed) == std::max(alignof(TypeParam), alignof(ErrorCode2)));

    Typed const value;
    Typed const error = pear;
    auto const flagOf = [](Typed const& result) {
        unsigned char flag = 0xFF;
        std::memcpy(&flag, &result, 1);
        return flag;
    };
    auto const offsetIn = [](Typed const& result, void const* part) {
        return static_cast<std::size_t>(static_cast<char const*>(part)
                                        - reinterpret_cast<char const*>(&result));
    };
    EXPECT_EQ(flagOf(value), 1);
    EXPECT_EQ(flagOf(error), 0);
    EXPECT_EQ(offsetIn(value, &*value), alignof(Typed));
    EXPECT_EQ(offsetIn(error, &error.error()), alignof(Typed));
}

TEST(ExpectedVoidLayout, FlagComesFirstThenTheError) {
    static_assert(sizeof(VoidResult) == sizeof(LayoutModel<ErrorCode2>));
    VoidResult const error = pear;
    EXPECT_EQ(reinterpret_cast<char const*>(&error.error()) - reinterpret_cast<char const*>(&error),
              static_cast<std::ptrdiff_t>(alignof(ErrorCode2)));
    unsigned char flag = 0xFF;
    std::memcpy(&flag, &error, 1);
    EXPECT_EQ(flag, 0);
}

} // namespace

} // namespace Tervane::System

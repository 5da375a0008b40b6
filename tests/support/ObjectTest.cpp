#include <System/Object.h>

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

namespace Tervane::System {

namespace {

/// Counts its live objects, so that a deletion through the base can be seen.
struct CounterData : ObjectData {
    explicit CounterData(int value) : count(value) { ++alive; }
    CounterData(CounterData const& other) : ObjectData(other), count(other.count) { ++alive; }
    ~CounterData() override { --alive; }

    static inline int alive = 0;
    int count;
};

class Counter : public Object {
public:
    explicit Counter(int count) : Object(UniquePointer<ObjectData>(new CounterData(count))) {}
    bool hasData() const { return objectData() != nullptr; }
    int count() const { return static_cast<CounterData const*>(objectData())->count; }
    void setCount(int count) { static_cast<CounterData*>(objectData())->count = count; }
};

using Pointer = UniquePointer<ObjectData>;

static_assert(!std::is_copy_constructible_v<Pointer> && !std::is_copy_assignable_v<Pointer>);
static_assert(std::is_nothrow_move_constructible_v<Pointer> && std::is_nothrow_move_assignable_v<Pointer>);
static_assert(!std::is_convertible_v<ObjectData*, Pointer> && !std::is_convertible_v<Pointer, bool>);
static_assert(sizeof(Pointer) == sizeof(void*));

static_assert(std::has_virtual_destructor_v<ObjectData> && std::is_default_constructible_v<ObjectData>);
static_assert(std::is_copy_constructible_v<ObjectData>);

static_assert(std::has_virtual_destructor_v<Object> && !std::is_constructible_v<Object, Pointer>);
static_assert(!std::is_default_constructible_v<Object>);
static_assert(!std::is_copy_constructible_v<Counter> && !std::is_copy_assignable_v<Counter>);
static_assert(std::is_nothrow_move_constructible_v<Counter> && std::is_nothrow_move_assignable_v<Counter>);
static_assert(sizeof(Object) == 2 * sizeof(void*));

class ObjectTest : public testing::Test {
protected:
    void SetUp() override { CounterData::alive = 0; }
    void TearDown() override { EXPECT_EQ(CounterData::alive, 0); }
};
using UniquePointerTest = ObjectTest;

TEST_F(UniquePointerTest, DeletesWhatItOwnsThroughTheVirtualDestructor) {
    {
        Pointer const pointer(new CounterData(1));
        EXPECT_EQ(CounterData::alive, 1);
    }
    EXPECT_EQ(CounterData::alive, 0);
}

TEST_F(UniquePointerTest, MoveLeavesTheSourceEmpty) {
    Pointer source(new CounterData(1));
    ObjectData* const object = source.get();
    Pointer const target(std::move(source));
    EXPECT_EQ(target.get(), object);
    EXPECT_EQ(target.operator->(), object);
    EXPECT_EQ(&*target, object);
    EXPECT_TRUE(static_cast<bool>(target));
    EXPECT_EQ(source.get(), nullptr);
    EXPECT_FALSE(static_cast<bool>(source));
}

TEST_F(UniquePointerTest, MoveAssignmentDeletesTheFormerObject) {
    Pointer target(new CounterData(1));
    Pointer source(new CounterData(2));
    ObjectData* const object = source.get();
    target = std::move(source);
    EXPECT_EQ(CounterData::alive, 1);
    EXPECT_EQ(target.get(), object);
    EXPECT_EQ(source.get(), nullptr);
    target = Pointer();
    EXPECT_EQ(CounterData::alive, 0);
}

TEST_F(UniquePointerTest, MoveAssignmentToItselfChangesNothing) {
    Pointer pointer(new CounterData(1));
    Pointer& same = pointer;
    pointer = std::move(same);
    EXPECT_NE(pointer.get(), nullptr);
    EXPECT_EQ(CounterData::alive, 1);
}

TEST_F(ObjectTest, HoldsTheDataItIsGiven) {
    Counter counter(3);
    EXPECT_EQ(counter.count(), 3);
    counter.setCount(4);
    EXPECT_EQ(counter.count(), 4);
}

TEST_F(ObjectTest, DataIsCopiedByItsOwnCopyConstructor) {
    CounterData const original(3);
    Pointer const copy(new CounterData(original));
    EXPECT_EQ(static_cast<CounterData const*>(copy.get())->count, 3);
    EXPECT_EQ(CounterData::alive, 2);
}

TEST_F(ObjectTest, MoveTakesTheDataAndLeavesTheSourceWithoutAny) {
    Counter source(3);
    Counter const target(std::move(source));
    EXPECT_EQ(target.count(), 3);
    EXPECT_FALSE(source.hasData());
}

TEST_F(ObjectTest, MoveAssignmentDeletesTheFormerData) {
    Counter target(1);
    Counter source(2);
    target = std::move(source);
    EXPECT_EQ(CounterData::alive, 1);
    EXPECT_EQ(target.count(), 2);
    EXPECT_FALSE(source.hasData());
    source = Counter(5);
    EXPECT_EQ(source.count(), 5);
}

TEST_F(ObjectTest, IsDestroyedThroughItsBase) {
    UniquePointer<Object> const object(new Counter(3));
    EXPECT_EQ(CounterData::alive, 1);
}

} // namespace

} // namespace Tervane::System

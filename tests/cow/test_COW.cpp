// Shared handles and detach-on-write (the virtual copy policy is tested with the exception
// classes in tests/nex).
#include <gtest/gtest.h>

#include "cow/cow_COW.h"
#include "mem/mem_Memory.h"

namespace {

struct Tracked {
    static int alive;
    int value;
    explicit Tracked(int v) : value(v) { ++alive; }
    Tracked(const Tracked& o) : value(o.value) { ++alive; }
    ~Tracked() { --alive; }
};
int Tracked::alive = 0;

using Handle = cow_COW<Tracked>;

class CowHandle : public ::testing::Test {
protected:
    void SetUp() override { Tracked::alive = 0; }
    void TearDown() override
    {
        mem_TestFailAllocation(0);
        EXPECT_EQ(Tracked::alive, 0) << "a handle leaked or double-freed its object";
    }
};

TEST_F(CowHandle, CopiesShareAndCountDownOnRelease)
{
    Handle none;  // a null referent still owns a counter
    Handle noneCopy(none);
    EXPECT_FALSE(none.HasValue());
    EXPECT_EQ(none.UseCount(), 2);

    Handle a(cow_New<Tracked>(7));
    {
        Handle b(a);
        Handle c = a;
        EXPECT_EQ(a.UseCount(), 3);
        EXPECT_EQ(b.GetPtr(), a.GetPtr());
        EXPECT_FALSE(a.Exclusive());
    }
    EXPECT_EQ(a.UseCount(), 1);
    Tracked* before = a.GetPtr();
    Handle& same = a;
    a = same;  // self-assignment keeps the count and the referent
    EXPECT_EQ(a.UseCount(), 1);
    EXPECT_EQ(a.GetPtr(), before);
    EXPECT_EQ(Tracked::alive, 1);
}

TEST_F(CowHandle, AssigningAPointerReplacesTheObjectOfThatHandleOnly)
{
    Handle a(cow_New<Tracked>(1));
    a = cow_New<Tracked>(2);  // sole owner: the old object goes
    EXPECT_EQ(Tracked::alive, 1);
    Handle b(a);
    b = cow_New<Tracked>(3);  // shared: the others keep the old object
    EXPECT_EQ(a.ConstGet().value, 2);
    EXPECT_EQ(b.ConstGet().value, 3);
    EXPECT_EQ(a.UseCount(), 1);
    EXPECT_EQ(b.UseCount(), 1);
    EXPECT_EQ(Tracked::alive, 2);
}

TEST_F(CowHandle, GetDetachesOnlyWhenSharedAndAValueIsAlwaysCopied)
{
    Handle a(cow_New<Tracked>(5));
    EXPECT_EQ(&a.Get(), a.GetPtr()) << "an exclusive Get must not copy";
    Handle b(a);
    Tracked& mine = b.Get();
    mine.value = 6;
    EXPECT_NE(&mine, a.GetPtr());
    EXPECT_EQ(a.ConstGet().value, 5);
    EXPECT_EQ(a.UseCount(), 1);
    EXPECT_EQ(b.UseCount(), 1);

    Tracked local(3);
    Handle h(local);
    EXPECT_NE(h.GetPtr(), &local);
    EXPECT_EQ(h.ConstGet().value, 3);
}

TEST_F(CowHandle, FailedDetachLeavesEverySharerAsItWas)
{
    Handle a(cow_New<Tracked>(9));
    Handle b(a);
    Tracked* shared = a.GetPtr();
    for (long n = 1; n <= 2; ++n) {  // fail the copy, then the new counter cell
        mem_TestFailAllocation(n);
        EXPECT_ANY_THROW(b.Get());
        mem_TestFailAllocation(0);
        EXPECT_EQ(a.GetPtr(), shared);
        EXPECT_EQ(b.GetPtr(), shared);
        EXPECT_EQ(a.UseCount(), 2);
        EXPECT_EQ(Tracked::alive, 1);
    }
    b.Get().value = 10;
    EXPECT_EQ(a.ConstGet().value, 9);
}

}  // namespace

// Array lists: block storage, sharing, the list operations and their contracts.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cow/cow_1DArrayList.h"
#include "cow/cow_List.h"
#include "mem/mem_Memory.h"
#include "zul_TestSupport.h"

namespace {

using IntList = cow_1DArrayList<int>;

IntList Make(std::initializer_list<int> values)
{
    IntList l;
    for (int v : values)
        l.Append(v);
    return l;
}

std::vector<int> Items(const IntList& l)
{
    std::vector<int> out;
    for (cow_1DArrayListIter<int> it(l); it.NotDone(); ++it)
        out.push_back(*it);
    return out;
}

TEST(Cow1DArray, GrowthFollowsTheBlockAndSpareSlotRulesAndMovesNoElement)
{
    cow_1DArray<int> a;
    EXPECT_EQ(a.Shift(), 0);
    EXPECT_EQ(a.Capacity(), 0);
    a.Grow(1);
    EXPECT_EQ(a.Shift(), 4);
    EXPECT_EQ(a.Capacity(), 1 + 16);  // blocks needed plus 16 spare slots
    a.Grow(17 * 16);                  // exactly fills the table: no reallocation
    EXPECT_EQ(a.Capacity(), 17);
    a.Grow(17 * 16 + 1);
    EXPECT_EQ(a.Capacity(), 18 + 16);
    a.Grow(0);
    EXPECT_EQ(a.Capacity(), 0);
    EXPECT_EQ(a.Shift(), 0);

    cow_1DArray<double> d;
    d.Get(40) = 2.5;  // writing past the end grows to 41; the elements before read as zero
    EXPECT_EQ(d.Size(), 41);
    EXPECT_EQ(d[0], 0.0);
    EXPECT_EQ(d[39], 0.0);
    const double* where = &d[40];
    d.Grow(5000);
    EXPECT_EQ(&d[40], where) << "growth must not move elements";
    EXPECT_EQ(d[40], 2.5);
}

TEST(Cow1DArray, WriteCopiesOnlyTheTouchedBlock)
{
    cow_1DArray<int> a;
    for (int i = 0; i < 64; ++i)
        a.Get(i) = i;
    cow_1DArray<int> b(a);
    EXPECT_EQ(a.UseCount(), 2);
    b.Get(20) = -1;  // block 1
    EXPECT_EQ(a[20], 20);
    EXPECT_EQ(b[20], -1);
    EXPECT_EQ(&a[0], &b[0]) << "untouched blocks stay shared";
    EXPECT_EQ(&a[63], &b[63]);
    EXPECT_NE(&a[16], &b[16]);
}

// Runs are the elements of one block from a position on, capped at the count: a list whose
// storage starts inside a block (prepends) and has a block not made yet still reads in order.
TEST(Cow1DArrayList, RunsCoverTheElementsInOrderBlockByBlock)
{
    cow_List<int> l;
    for (int i = 1; i <= 20; ++i)
        l.Append(i);
    for (int i = 0; i >= -4; --i)
        l.Prepend(i);  // the storage now starts inside a block
    std::vector<int> seen;
    for (int i = 0, n = 0; i < l.Count(); i += n) {
        const int* run = l.ConstRun(i, n);
        ASSERT_GT(n, 0);
        ASSERT_LE(n, 16);
        for (int k = 0; k < n; ++k)
            ASSERT_EQ(&run[k], &l[i + k]) << "a run stays inside its block";
        seen.insert(seen.end(), run, run + n);
    }
    std::vector<int> expected;
    for (int i = -4; i <= 20; ++i)
        expected.push_back(i);
    EXPECT_EQ(seen, expected);
    int n = -1;
    EXPECT_EQ(l.ConstRun(l.Count(), n), nullptr);
    EXPECT_EQ(n, 0);

    IntList grown;
    grown.Grow(40);  // storage of 40 elements, none made: read as defaults
    cow_1DArrayListIter<int> it(grown);  // iterates the count (0), not the storage
    EXPECT_FALSE(it.NotDone());
    const int* unmade = grown.Storage().ConstRun(20, n);
    EXPECT_EQ(*unmade, 0);
    EXPECT_EQ(n, 1);
}

TEST(Cow1DArrayList, AppendInsertRemoveKeepOrderAndResetVacatedPlaces)
{
    IntList l = Make({1, 2, 3});
    l.Remove(0);
    EXPECT_EQ(l.Storage()[2], 0) << "the vacated place is reset";
    l.Insert(0, 7);
    l.Insert(l.Count(), 9);  // same as Append
    l.Insert(1, 8);
    EXPECT_EQ(Items(l), (std::vector<int>{7, 8, 2, 3, 9}));
    EXPECT_EQ(l.Pop(), 9);
    EXPECT_EQ(l.Count(), 4);

    cow_1DArrayList<std::string> strings;
    strings.Append("a");
    strings.Append("b");
    strings.Remove(0);
    EXPECT_EQ(strings[0], "b");
    EXPECT_EQ(strings.Storage()[1], "");
}

// The callers' contracts, not checked: an insert past the count raises the count by one only,
// and removals from an empty list drive it below zero without touching memory.
TEST(Cow1DArrayList, UncheckedPositionsFollowTheContract)
{
    IntList l = Make({1});
    l.Insert(3, 5);
    EXPECT_EQ(l.Count(), 2);
    EXPECT_EQ(l.Storage()[1], 0);
    EXPECT_EQ(l.Storage()[3], 5);
    IntList e;
    e.Remove(0);
    e.Pop();
    EXPECT_EQ(e.Count(), -2);
    e.ClearAll();
    EXPECT_EQ(e.Count(), 0);
}

TEST(Cow1DArrayList, FindFirstAnswersCountWhenMissingAndSlicesClip)
{
    IntList l = Make({4, 5, 4});
    EXPECT_EQ(l.FindFirst(4), 0);
    EXPECT_EQ(l.FindFirst(6), 3);
    EXPECT_FALSE(l.IsMember(6));
    l.AppendUnlessMember(5);
    l.AppendUnlessMember(6);
    l.RemoveMember(4);
    EXPECT_EQ(Items(l), (std::vector<int>{5, 4, 6}));

    l = Make({0, 1, 2, 3, 4});  // slices are clipped to the list and may be empty
    EXPECT_EQ(Items(l.Slice(2, 100)), (std::vector<int>{2, 3, 4}));
    EXPECT_EQ(l.Slice(5, 9).Count(), 0);
    EXPECT_EQ(l.Slice(3, 1).Count(), 0);
    IntList out = Make({9});
    l.Slice(1, 3, out);
    EXPECT_EQ(Items(out), (std::vector<int>{1, 2}));
}

TEST(Cow1DArrayList, SharedListsAreEqualAndIsolatedAfterAWrite)
{
    IntList a;
    for (int i = 0; i < 100; ++i)
        a.Append(i);
    IntList b(a);
    EXPECT_TRUE(a.IsEqual(b));
    b.Get(50) = -50;
    EXPECT_EQ(a[50], 50);
    EXPECT_FALSE(a.IsEqual(b));
    EXPECT_FALSE(a.IsEqual(Make({1})));
    EXPECT_TRUE(IntList().IsEqual(IntList()));

    cow_1DArrayList<cow_1DArrayList<int>> outer;  // lists of lists: the inner list detaches too
    outer.Append(Make({1, 2}));
    cow_1DArrayList<cow_1DArrayList<int>> copy(outer);
    copy.Get(0).Append(3);
    EXPECT_EQ(outer[0].Count(), 2);
    EXPECT_EQ(copy[0].Count(), 3);
}

TEST(Cow1DArrayList, AppendListGrowsToTheOtherCountOnlyAndGetCArrayCopies)
{
    IntList a = Make({1});
    IntList b;
    for (int i = 0; i < 40; ++i)
        b.Append(i);
    a.Append(b);
    EXPECT_EQ(a.Count(), 41);
    EXPECT_EQ(a[0], 1);
    EXPECT_EQ(a[40], 39);
    a.Append(a);  // appending itself doubles it
    EXPECT_EQ(a.Count(), 82);
    EXPECT_EQ(a[81], 39);

    int n = -1;  // GetCArray copies and hands the copy over
    int* empty = IntList().GetCArray(n);
    EXPECT_EQ(n, 0);
    mem_Free(empty);

    IntList l = Make({3, 1, 4});
    int* raw = l.GetCArray(n);
    ASSERT_EQ(n, 3);
    EXPECT_EQ(std::vector<int>(raw, raw + 3), (std::vector<int>{3, 1, 4}));
    mem_Free(raw);
}

// Every failing allocation point of a write on a shared list leaves both sharers unchanged.
TEST(Cow1DArrayList, FailedWritesOnASharedListChangeNothing)
{
    IntList original;
    for (int i = 0; i < 70; ++i)
        original.Append(i);

    const std::vector<zul_test::Write<IntList>> writes = {
        {"Insert", [](IntList& l) { l.Insert(3, 99); }},
        {"Remove", [](IntList& l) { l.Remove(5); }},
        {"Append", [](IntList& l) { l.Append(99); }},
        {"AppendList", [](IntList& l) { IntList more = l; l.Append(more); }},
        {"Get", [](IntList& l) { l.Get(33) = 99; }},
    };
    zul_test::ExpectFailedWritesChangeNothing(original, Items, writes);

    // A private list whose last block is full: the append that needs a new block fails whole.
    IntList own = Make({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16});
    mem_TestFailAllocation(1);
    EXPECT_ANY_THROW(own.Append(17));
    mem_TestFailAllocation(0);
    EXPECT_EQ(own.Count(), 16);
    EXPECT_EQ(own.Storage().Size(), 16) << "the storage did not grow either";
    own.Append(17);
    EXPECT_EQ(own[16], 17);
}

}  // namespace

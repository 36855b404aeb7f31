// Double-ended lists: front operations through the offset, sorting, set-like operations.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cow/cow_List.h"
#include "mem/mem_Memory.h"
#include "zul_TestSupport.h"

namespace {

using IntList = cow_List<int>;

std::vector<int> Items(const IntList& l)
{
    std::vector<int> out;
    for (cow_ListIter<int> it(l); it.NotDone(); ++it)
        out.push_back(*it);
    return out;
}

IntList Make(std::initializer_list<int> values)
{
    IntList l;
    for (int v : values)
        l.Append(v);
    return l;
}

TEST(CowList, InsertionsRemovalsAndPositions)
{
    IntList l;
    l.Prepend(1).Append(2).Append(3);
    l.InsertAfter(0, 9).InsertAfter(l.Count(), 4);  // the second appends
    EXPECT_EQ(Items(l), (std::vector<int>{1, 9, 2, 3, 4}));
    EXPECT_EQ(l.Position(3), 3);
    EXPECT_EQ(l.Position(7), -1);
    EXPECT_FALSE(l.IsMember(7));
    l.Remove(7);
    l.RemoveIndex(1).RemoveLast();
    EXPECT_EQ(Items(l), (std::vector<int>{1, 2, 3}));
    l.Clear();
    l.RemoveFirst().RemoveLast();
    EXPECT_EQ(l.Count(), -2) << "removals on an empty list drive the count below zero";
}

TEST(CowList, RepeatedPrependsMoveBlocksOnlyWhenTheFrontRoomIsUsedUp)
{
    IntList l = Make({100});
    l.Prepend(99);
    const int offsetAfterFirst = l.Storage().Offset();
    EXPECT_GT(offsetAfterFirst, 0) << "the first prepend makes room in front";
    const int* back = &l[1];
    for (int i = 98; i > 98 - offsetAfterFirst; --i)
        l.Prepend(i);
    EXPECT_EQ(l.Storage().Offset(), 0);
    EXPECT_EQ(&l[l.Count() - 1], back) << "no element moved while front room lasted";
    const int front = l[0] - 1;
    l.Prepend(front);  // room used up: blocks move to the end of a grown table
    EXPECT_EQ(l[0], front);
    EXPECT_EQ(l[l.Count() - 1], 100);
    EXPECT_EQ(l.Count(), offsetAfterFirst + 3);
    for (int i = 0; i + 1 < l.Count(); ++i)
        ASSERT_LT(l[i], l[i + 1]) << "order lost at " << i;
}

TEST(CowList, RemoveFirstFreesFrontPlacesAndBlocks)
{
    IntList l = Make({1, 2, 3});
    l.RemoveFirst();
    EXPECT_EQ(l.Storage().Offset(), 1);
    l.Prepend(7);  // reuses the freed place
    EXPECT_EQ(l.Storage().Offset(), 0);
    EXPECT_EQ(Items(l), (std::vector<int>{7, 2, 3}));

    IntList more;
    for (int i = 0; i < 40; ++i)
        more.Append(i);
    for (int i = 0; i < 17; ++i)  // across a block, which is released
        more.RemoveFirst();
    EXPECT_EQ(more.Count(), 23);
    EXPECT_EQ(more[0], 17);
    EXPECT_EQ(more[22], 39);
}

TEST(CowList, DifferenceKeepsOrderAndRepetitions)
{
    IntList l = Make({3, 1, 2, 1});
    EXPECT_EQ(Items(l - Make({1})), (std::vector<int>{3, 2}));
    EXPECT_EQ(Items(l - IntList()), (std::vector<int>{3, 1, 2, 1}));
    EXPECT_EQ(Items(Make({3, 1, 3}) - Make({1})), (std::vector<int>{3, 3}));
}

TEST(CowList, SortLeavesSharersUntouchedAndStoragePrivate)
{
    IntList l = Make({3, 1, 2});
    l.RemoveFirst().Prepend(3);  // an offset the sort must reset
    IntList sharer(l);
    l.Sort();
    EXPECT_EQ(Items(l), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(Items(sharer), (std::vector<int>{3, 1, 2}));
    EXPECT_EQ(l.Storage().Offset(), 0);
    EXPECT_TRUE(l.Storage().Exclusive());
    IntList().Sort();
}

TEST(CowList, SortOfObjectsThatCannotBeMovedBytewiseAndOfLists)
{
    cow_List<std::string> l;
    l.Append("pear").Append("apple").Append("fig").Append("apple");
    l.Sort();
    EXPECT_EQ(l[0] + l[1] + l[2] + l[3], "appleapplefigpear");

    cow_List<cow_1DArrayList<int>> lists;  // lexicographic: {1} < {1, 5} < {2}
    cow_1DArrayList<int> a, b, c;
    a.Append(2);
    b.Append(1);
    b.Append(5);
    c.Append(1);
    lists.Append(a).Append(b).Append(c);
    lists.Sort();
    EXPECT_EQ(lists[0].Count(), 1);
    EXPECT_EQ(lists[0][0], 1);
    EXPECT_EQ(lists[1][1], 5);
    EXPECT_EQ(lists[2][0], 2);
}

TEST(CowList, FailedWritesOnASharedListChangeNothing)
{
    IntList original;
    for (int i = 50; i > 0; --i)  // descending, so that a sort changes it
        original.Append(i);
    original.RemoveFirst();

    const std::vector<zul_test::Write<IntList>> writes = {
        {"Prepend", [](IntList& l) { l.Prepend(-1); }},
        {"RemoveFirst", [](IntList& l) { l.RemoveFirst(); }},
        {"InsertAfter", [](IntList& l) { l.InsertAfter(10, -1); }},
        {"RemoveIndex", [](IntList& l) { l.RemoveIndex(20); }},
        {"Sort", [](IntList& l) { l.Sort(); }},
    };
    zul_test::ExpectFailedWritesChangeNothing(original, Items, writes);
}

TEST(CowList, PrependOnAnExclusiveListSurvivesAllocationFailure)
{
    for (long n = 1; n < 10; ++n) {
        IntList l = Make({1, 2});
        mem_TestFailAllocation(n);
        try {
            l.Prepend(0);
        } catch (...) {
        }
        mem_TestFailAllocation(0);
        const std::vector<int> items = Items(l);
        EXPECT_TRUE(items == (std::vector<int>{1, 2}) || items == (std::vector<int>{0, 1, 2})) << n;
    }
}

}  // namespace

// Digital-search-tree maps: tree shapes, key bits, path copying, removal, iteration.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

#include "cow/cow_Map.h"
#include "zul_TestSupport.h"

namespace {

using IntMap = cow_Map<int, int>;

std::vector<int> TreeOrder(const IntMap& m)
{
    std::vector<int> keys;
    cow_ConstMapIterator<int, int> it(m);
    for (it.First(); it.NotDone(); it.Next())
        keys.push_back(it.Key());
    return keys;
}

std::map<int, int> Contents(const IntMap& m)
{
    std::map<int, int> out;
    cow_ConstMapIterator<int, int> it(m);
    for (it.First(); it.NotDone(); it.Next())
        out[it.Key()] = it.Value();
    return out;
}

TEST(CowMap, FirstKeysFollowTheirLowBits)
{
    IntMap m;
    for (int k = 0; k < 4; ++k)
        EXPECT_TRUE(m.Insert(k, k * 10));
    const auto& root = m.Root().ConstGet();
    EXPECT_EQ(root.key, 0);
    EXPECT_EQ(root.right.ConstGet().key, 1) << "bit 0 of 1 is 1";
    EXPECT_EQ(root.left.ConstGet().key, 2) << "bit 0 of 2 is 0";
    EXPECT_EQ(root.right.ConstGet().right.ConstGet().key, 3) << "bit 1 of 3 is 1";
    EXPECT_EQ(TreeOrder(m), (std::vector<int>{0, 2, 1, 3}));
}

TEST(CowMap, RemovingTheRootPullsUpFromTheRightFirst)
{
    IntMap m;
    m.Insert(0, 0);
    m.Insert(1, 1);
    m.Insert(2, 2);
    EXPECT_TRUE(m.Remove(0));
    EXPECT_EQ(m.Root().ConstGet().key, 1);
    EXPECT_EQ(m.Count(), 2);
    EXPECT_TRUE(m.IsMember(2));

    IntMap leftOnly;
    leftOnly.Insert(0, 0);
    leftOnly.Insert(2, 2);
    leftOnly.Remove(0);
    EXPECT_EQ(leftOnly.Root().ConstGet().key, 2);
}

TEST(CowMap, CopiesShareEveryNodeOffTheWrittenPath)
{
    IntMap a;
    for (int k = 0; k < 4; ++k)
        a.Insert(k, k);
    IntMap b(a);
    b.Insert(7, 7);  // path 0 -> 1 -> 3 -> (7)
    EXPECT_EQ(a.Count(), 4);
    EXPECT_FALSE(a.IsMember(7));
    EXPECT_TRUE(b.IsMember(7));
    EXPECT_NE(&a.Root().ConstGet(), &b.Root().ConstGet()) << "the path is copied";
    EXPECT_EQ(&a.Root().ConstGet().left.ConstGet(), &b.Root().ConstGet().left.ConstGet())
        << "the untouched left subtree is shared";
}

TEST(CowMap, SortedIteratorOrdersKeys)
{
    IntMap m;
    for (int k : {5, -3, 12, 0, 7, -100})
        m.Insert(k, k);
    cow_ConstMapSortedIt<int, int> up(m);
    std::vector<int> keys;
    for (up.First(); up.NotDone(); up.Next())
        keys.push_back(up.Key());
    EXPECT_EQ(keys, (std::vector<int>{-100, -3, 0, 5, 7, 12}));
    cow_ConstMapSortedIt<int, int> down(m, true);
    down.First();
    EXPECT_EQ(down.Key(), 12);
}

TEST(CowMap, StringKeyBitsInterleaveFrontAndBack)
{
    const cow_String abc("abc");  // a=0x61, b=0x62, c=0x63
    EXPECT_EQ(cow_MapKeyBit(abc, 0), 1);
    EXPECT_EQ(cow_MapKeyBit(abc, 1), 1);
    EXPECT_EQ(cow_MapKeyBit(abc, 2), 0);
    EXPECT_EQ(cow_MapKeyBit(abc, 3), 0);
    for (int d = 4; d < 40; ++d)
        EXPECT_EQ(cow_MapKeyBit(abc, d), 0) << d;
    EXPECT_EQ(cow_MapKeyBit(cow_String(), 0), 0);

    cow_Map<cow_String, int> m;  // "a" and "c" agree in every bit: they go to different depths
    m.Insert("a", 1);
    m.Insert("c", 3);
    m.Insert("", 0);
    m.Insert("abc", 9);
    EXPECT_EQ(m.ConstGet("c"), 3);
    EXPECT_EQ(m.ConstGet(""), 0);
    EXPECT_EQ(m.ConstGet(cow_String()), 0) << "a string without representation is the empty key";
    cow_ConstMapSortedIt<cow_String, int> it(m);
    it.First();
    EXPECT_EQ(it.Key(), "");
}

TEST(CowMap, RandomOperationsAgreeWithStdMap)
{
    std::mt19937 rng(99);
    IntMap m;
    std::map<int, int> reference;
    for (int step = 0; step < 4000; ++step) {
        const int key = static_cast<int>(rng() % 200) - 100;
        if (rng() % 3 == 0) {
            EXPECT_EQ(m.Remove(key), reference.erase(key) == 1);
        } else if (step % 7 == 0 && reference.count(key)) {
            m.Get(key) = step;
            reference[key] = step;
        } else {
            EXPECT_TRUE(m.Insert(key, step)) << "a replacing insert answers true as well";
            reference[key] = step;
        }
    }
    EXPECT_EQ(m.Count(), static_cast<int>(reference.size()));
    EXPECT_EQ(Contents(m), reference);
    const cow_List<int> keys = cow_MapUtils<int, int>::cow_Keys(m);
    const cow_List<int> values = cow_MapUtils<int, int>::cow_Values(m);
    ASSERT_EQ(keys.Count(), m.Count());
    for (int i = 0; i < keys.Count(); ++i)
        EXPECT_EQ(reference[keys[i]], values[i]);
}

TEST(CowMap, FailedWritesOnASharedMapChangeNothing)
{
    IntMap original;
    for (int k = 0; k < 64; ++k)
        original.Insert(k * 7, k);
    const std::vector<zul_test::Write<IntMap>> writes = {
        {"Insert", [](IntMap& m) { m.Insert(1000, 1); }},
        {"Replace", [](IntMap& m) { m.Insert(63 * 7, -1); }},
        {"Remove", [](IntMap& m) { m.Remove(0); }},
        {"Get", [](IntMap& m) { m.Get(14) = -2; }},
    };
    zul_test::ExpectFailedWritesChangeNothing(original, Contents, writes);
}

}  // namespace

// The crit-bit trie: order of the unsigned bit patterns, replacement, removal, lookups.
#include <gtest/gtest.h>

#include <climits>
#include <map>
#include <random>
#include <vector>

#include "cls/cls_PTrie.h"
#include "cow/cow_String.h"
#include "mem/mem_Memory.h"

template class cls_PTrie<int, int, 1>;
template class cls_PTrie<int, float, 1>;
template class cls_PTrie<int, double, 1>;
template class cls_PTrie<int, bool, 1>;
template class cls_PTrie<int, cow_String, 1>;

namespace {

using Trie = cls_PTrie<int, int, 1>;

std::vector<int> Keys(const Trie& t)
{
    std::vector<int> keys;
    cls_PTrieIter<int, int, 1> it(t);
    for (it.First(); !it.IsDone(); it.Next())
        keys.push_back(it.Key());
    return keys;
}

TEST(ClsPTrie, NegativeKeysComeAfterAllOthers)
{
    Trie t;
    t.Insert(5, 50);
    t.Insert(1, 10);
    t.Insert(-1, -10);
    EXPECT_EQ(Keys(t), (std::vector<int>{1, 5, -1}));
    t.Insert(INT_MIN, 0);
    t.Insert(INT_MAX, 0);
    t.Insert(0, 0);
    EXPECT_EQ(Keys(t), (std::vector<int>{0, 1, 5, INT_MAX, INT_MIN, -1}));
}

TEST(ClsPTrie, ZeroAndIntMinBranchOnTheTopBit)
{
    Trie t;
    t.Insert(0, 1);
    t.Insert(INT_MIN, 2);
    const auto* root = dynamic_cast<const cls_PTrieInternalNode<int, int, 1>*>(t.Root());
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->bit, 31);
    typedef cls_PTrieLeafNode<int, int, 1> Leaf;
    const Leaf* zeroSide = dynamic_cast<const Leaf*>(root->child0);
    ASSERT_NE(zeroSide, nullptr);
    EXPECT_EQ(zeroSide->key, 0);
}

TEST(ClsPTrie, InsertReplacesAndAnswersTheStoredValue)
{
    Trie t;
    int& first = t.Insert(7, 1);
    int& again = t.Insert(7, 2);
    EXPECT_EQ(&first, &again);
    EXPECT_EQ(again, 2);
    EXPECT_EQ(t.Size(), 1);
    t.Insert(8, 3) = 30;  // the reference writes into the trie
    EXPECT_EQ(t.ConstGet(8), 30);
}

TEST(ClsPTrie, RemovalAndLookups)
{
    Trie t;
    EXPECT_EQ(t.ConstGetPtr(3), nullptr) << "an empty trie answers null";
    EXPECT_THROW(t.ConstGet(3), nex_TextException);
    t.Remove(3);
    t.Insert(3, 30);
    t.Insert(2, 20);
    EXPECT_EQ(t.ConstGetPtr(6), nullptr) << "a key sharing a path with a stored one";
    t.Remove(99);
    EXPECT_EQ(t.Size(), 2);
    t.Remove(3);
    EXPECT_EQ(t.Size(), 1);
    EXPECT_EQ(t.ConstGet(2), 20);
    t.Remove(2);
    EXPECT_EQ(t.Size(), 0);
    EXPECT_EQ(t.Root(), nullptr);
    cls_PTrieIter<int, int, 1> it(t);
    it.First();
    EXPECT_TRUE(it.IsDone());
}

TEST(ClsPTrie, RandomOperationsAgreeWithAnUnsignedOrderedMap)
{
    std::mt19937 rng(3);
    Trie t;
    std::map<unsigned int, int> reference;  // ordered as the trie iterates
    for (int step = 0; step < 5000; ++step) {
        const int key = static_cast<int>(rng() % 400) - 200;
        if (rng() % 3 == 0) {
            t.Remove(key);
            reference.erase(static_cast<unsigned int>(key));
        } else {
            t.Insert(key, step);
            reference[static_cast<unsigned int>(key)] = step;
        }
    }
    ASSERT_EQ(t.Size(), static_cast<int>(reference.size()));
    std::vector<int> expected;
    for (const auto& kv : reference) {
        expected.push_back(static_cast<int>(kv.first));
        EXPECT_EQ(t.ConstGet(static_cast<int>(kv.first)), kv.second);
    }
    EXPECT_EQ(Keys(t), expected);
    t.Clear();
    EXPECT_EQ(t.Size(), 0);
    EXPECT_TRUE(Keys(t).empty());
}

TEST(ClsPTrie, FailedInsertChangesNothing)
{
    for (long n = 1; n <= 3; ++n) {
        Trie t;
        t.Insert(1, 1);
        t.Insert(2, 2);
        mem_TestFailAllocation(n);
        try {
            t.Insert(4, 4);
        } catch (...) {
        }
        mem_TestFailAllocation(0);
        const std::vector<int> keys = Keys(t);
        EXPECT_TRUE(keys == (std::vector<int>{1, 2}) || keys == (std::vector<int>{1, 2, 4})) << n;
        EXPECT_EQ(t.Size(), static_cast<int>(keys.size()));
    }
}

}  // namespace

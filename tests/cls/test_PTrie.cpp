// The crit-bit trie: order of the unsigned bit patterns, replacement, removal, lookups, shape,
// failure safety.
#include <gtest/gtest.h>

#include <climits>
#include <map>
#include <cstdint>
#include <random>
#include <stdexcept>
#include <vector>

#include "cls/cls_PTrie.h"
#include "mem/mem_Memory.h"

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

TEST(ClsPTrie, NegativeKeysComeAfterAllOthersAndBranchOnTheTopBit)
{
    Trie t;
    t.Insert(0, 1);
    t.Insert(INT_MIN, 2);
    const auto* root = dynamic_cast<const cls_PTrieInternalNode<int, int, 1>*>(t.Root());
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->bit, 31);
    const auto* zeroSide = dynamic_cast<const cls_PTrieLeafNode<int, int, 1>*>(root->child0);
    ASSERT_NE(zeroSide, nullptr);
    EXPECT_EQ(zeroSide->key, 0);
    for (int k : {5, 1, -1, INT_MAX})
        t.Insert(k, 0);
    EXPECT_EQ(Keys(t), (std::vector<int>{0, 1, 5, INT_MAX, INT_MIN, -1}));
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

TEST(ClsPTrie, AbsentKeysRemovalAndEmptying)
{
    Trie t;
    for (int k : {0, 1, -1, INT_MIN, INT_MAX}) {
        EXPECT_EQ(t.ConstGetPtr(k), nullptr) << "an empty trie answers null";
        EXPECT_THROW(t.ConstGet(k), nex_TextException);
    }
    t.Remove(3);
    t.Insert(3, 30);
    t.Insert(2, 20);
    EXPECT_EQ(t.ConstGetPtr(6), nullptr) << "a key sharing a path with a stored one";
    EXPECT_THROW(t.ConstGet(6), nex_TextException);
    t.Remove(99);
    t.Remove(3);
    EXPECT_EQ(t.Size(), 1);
    EXPECT_EQ(t.ConstGet(2), 20);
    t.Remove(2);
    EXPECT_EQ(t.Size(), 0);
    EXPECT_EQ(t.Root(), nullptr);
    EXPECT_EQ(t.ConstGetPtr(2), nullptr);
    cls_PTrieIter<int, int, 1> it(t);
    it.First();
    EXPECT_TRUE(it.IsDone());
    t.Insert(4, 4);
    t.Clear();
    EXPECT_EQ(t.ConstGetPtr(4), nullptr);
    t.Insert(9, 90);  // usable again
    EXPECT_EQ(t.ConstGet(9), 90);
}

typedef cls_PTrieNode<int, int, 1> Node;
typedef cls_PTrieInternalNode<int, int, 1> Internal;
typedef cls_PTrieLeafNode<int, int, 1> Leaf;

// Checks the crit-bit shape below `node`: every internal node's bit is below its parent's, the
// leaves under its bit-1 child have that bit set and those under its bit-0 child have it clear,
// and all leaves of a subtree agree on the bits above its node's bit. Answers the leaf count and
// one leaf key of the subtree.
int CheckShape(const Node* node, int parentBit, uint32_t& someKey)
{
    if (const Leaf* leaf = dynamic_cast<const Leaf*>(node)) {
        someKey = static_cast<uint32_t>(leaf->key);
        return 1;
    }
    const Internal* in = dynamic_cast<const Internal*>(node);
    EXPECT_NE(in, nullptr);
    EXPECT_LT(in->bit, parentBit);
    EXPECT_GE(in->bit, 0);
    EXPECT_TRUE(in->child0 && in->child1);
    uint32_t k0 = 0, k1 = 0;
    const int count = CheckShape(in->child0, in->bit, k0) + CheckShape(in->child1, in->bit, k1);
    EXPECT_EQ((k0 >> in->bit) & 1u, 0u);
    EXPECT_EQ((k1 >> in->bit) & 1u, 1u);
    const uint32_t above = in->bit == 31 ? 0u : ~0u << (in->bit + 1);
    EXPECT_EQ(k0 & above, k1 & above) << "subtree leaves disagree above bit " << in->bit;
    someKey = k0;
    return count;
}

int CheckShape(const Trie& t)
{
    uint32_t key = 0;
    return t.Root() ? CheckShape(t.Root(), 32, key) : 0;
}

TEST(ClsPTrie, RemovingAMidPathLeafSplicesItsSiblingUp)
{
    Trie t;
    for (int k : {0, 1, 2, 3, 8, 12, -8})
        t.Insert(k, k * 10);
    EXPECT_EQ(CheckShape(t), 7);
    t.Remove(2);  // its sibling 3 moves up beside {0, 1}
    EXPECT_EQ(CheckShape(t), 6);
    EXPECT_EQ(Keys(t), (std::vector<int>{0, 1, 3, 8, 12, -8}));
    EXPECT_EQ(t.ConstGetPtr(2), nullptr);
    EXPECT_EQ(t.ConstGet(3), 30);
    t.Remove(-8);  // the root's bit-1 side goes: the root is replaced by its bit-0 child
    EXPECT_EQ(CheckShape(t), 5);
    const Internal* root = dynamic_cast<const Internal*>(t.Root());
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->bit, 3) << "0..3 and 8, 12 differ first in bit 3";
    t.Insert(2, 21);
    EXPECT_EQ(CheckShape(t), 6);
    EXPECT_EQ(Keys(t), (std::vector<int>{0, 1, 2, 3, 8, 12}));
}

// Keys from the full range (short shared prefixes) and from -200..199 (long ones, deep paths).
TEST(ClsPTrie, RandomOperationsAgreeWithAMapInUnsignedOrder)
{
    std::mt19937 rng(17);
    Trie t;
    std::map<uint32_t, int> reference;
    std::vector<int> used;
    for (int step = 0; step < 25000; ++step) {
        int key = static_cast<int>(rng());
        if (step >= 20000)
            key = static_cast<int>(rng() % 400) - 200;
        else if (!used.empty() && rng() % 2)
            key = used[rng() % used.size()];
        else
            used.push_back(key);
        switch (rng() % 4) {
        case 0:
            t.Remove(key);
            reference.erase(static_cast<uint32_t>(key));
            break;
        case 1: {
            const int* got = t.ConstGetPtr(key);
            const auto it = reference.find(static_cast<uint32_t>(key));
            ASSERT_EQ(got != nullptr, it != reference.end()) << key;
            if (got) {
                EXPECT_EQ(*got, it->second);
            }
            break;
        }
        default:
            EXPECT_EQ(t.Insert(key, step), step);
            reference[static_cast<uint32_t>(key)] = step;
        }
        ASSERT_EQ(t.Size(), static_cast<int>(reference.size()));
        if (step % 2000 == 0 || step == 24999) {
            ASSERT_EQ(CheckShape(t), t.Size());
        }
    }
    std::vector<int> expected;
    for (const auto& kv : reference)
        expected.push_back(static_cast<int>(kv.first));
    EXPECT_EQ(Keys(t), expected);
    EXPECT_EQ(Keys(t), expected) << "a second pass from First gives the same order";
    t.Clear();
    EXPECT_TRUE(Keys(t).empty());
}

// A value that owns heap memory, counts its live copies and can be told to fail copying.
struct Tracked {
    static int alive;
    static bool failCopies;
    std::vector<int> payload;
    explicit Tracked(int v = 0) : payload(3, v) { ++alive; }
    Tracked(const Tracked& o) : payload(o.payload)
    {
        if (failCopies)
            throw std::runtime_error("copy");
        ++alive;
    }
    Tracked& operator=(const Tracked& o)
    {
        if (failCopies)
            throw std::runtime_error("assign");
        payload = o.payload;
        return *this;
    }
    ~Tracked() { --alive; }
};
int Tracked::alive = 0;
bool Tracked::failCopies = false;

TEST(ClsPTrie, ValuesAreDestroyedWithTheirLeaves)
{
    {
        cls_PTrie<int, Tracked, 1> t;
        for (int k = 0; k < 20; ++k)
            t.Insert(k * 7 - 50, Tracked(k));
        EXPECT_EQ(Tracked::alive, 20);
        t.Insert(-50, Tracked(99));  // replaced, not added
        EXPECT_EQ(Tracked::alive, 20);
        EXPECT_EQ(t.ConstGet(-50).payload[0], 99);
        t.Remove(6);  // k = 8
        t.Remove(5);  // absent
        EXPECT_EQ(Tracked::alive, 19);
        t.Clear();
        EXPECT_EQ(Tracked::alive, 0);
        for (int k = 0; k < 5; ++k)
            t.Insert(k, Tracked(k));
    }
    EXPECT_EQ(Tracked::alive, 0) << "the destructor frees every node";
}

TEST(ClsPTrie, FailedInsertsLeaveTheTrieAsItWas)
{
    typedef cls_PTrie<int, Tracked, 1> TrackedTrie;
    auto contents = [](const TrackedTrie& t) {
        std::vector<std::pair<int, int>> kv;
        cls_PTrieIter<int, Tracked, 1> it(t);
        for (it.First(); !it.IsDone(); it.Next())
            kv.emplace_back(it.Key(), it.Value().payload[0]);
        return kv;
    };
    TrackedTrie t;
    const Tracked v(5);
    // The first insert of all allocates one leaf.
    {
        TrackedTrie empty;
        mem_TestFailAllocation(1);
        EXPECT_ANY_THROW(empty.Insert(1, v));
        mem_TestFailAllocation(0);
        EXPECT_EQ(empty.Root(), nullptr);
        EXPECT_EQ(empty.Size(), 0);
    }
    // Later inserts: out of memory at the new leaf (1) or at the new internal node (2).
    for (int k : {1, 2, 6, -3})
        t.Insert(k, Tracked(k));
    const auto before = contents(t);
    const int alive = Tracked::alive;
    for (int key : {4, 0, -1, INT_MIN}) {
        for (long n = 1; n <= 2; ++n) {
            mem_TestFailAllocation(n);
            bool threw = false;
            try {
                t.Insert(key, v);
            } catch (...) {
                threw = true;
            }
            const long pending = mem_TestFailAllocationPending();
            mem_TestFailAllocation(0);
            EXPECT_TRUE(threw) << key << " failing allocation " << n;
            EXPECT_EQ(pending, 0);
            EXPECT_EQ(contents(t), before);
            EXPECT_EQ(t.Size(), 4);
            EXPECT_EQ(t.ConstGetPtr(key), nullptr);
            EXPECT_EQ(Tracked::alive, alive) << "nothing half-made is left behind";
        }
    }
    // A value whose copy fails: on a new key and on a present one.
    Tracked::failCopies = true;
    EXPECT_THROW(t.Insert(4, v), std::runtime_error);
    EXPECT_THROW(t.Insert(2, v), std::runtime_error);
    Tracked::failCopies = false;
    EXPECT_EQ(contents(t), before);
    EXPECT_EQ(Tracked::alive, alive);
    t.Insert(4, v);
    EXPECT_EQ(t.Size(), 5);
}

}  // namespace

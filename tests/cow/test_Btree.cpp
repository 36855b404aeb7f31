// Height-balanced trees: the rotation rule, successor removal, ordered iteration, sharing.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <random>
#include <vector>

#include "cow/cow_Btree.h"
#include "cow/cow_String.h"
#include "zul_TestSupport.h"

namespace {

using Tree = cow_Btree<int, int>;

int KeyOf(const Tree::Handle* h)
{
    return h->ConstGet().key;
}

std::map<int, int> Contents(const Tree& t)
{
    std::map<int, int> out;
    cow_BtreeIterator<int, int> it(t);
    for (it.First(); it.NotDone(); it.Next())
        out[it.Key()] = it.Value();
    return out;
}

// Every node's height follows the rule and keys are in search order.
int CheckNode(const Tree::Handle* h, long long low, long long high)
{
    if (!h)
        return -1;
    const auto& n = h->ConstGet();
    EXPECT_GT(n.key, low);
    EXPECT_LT(n.key, high);
    const int l = CheckNode(n.left, low, n.key);
    const int r = CheckNode(n.right, n.key, high);
    const int expected = (!n.left && !n.right) ? 0 : std::max(n.left ? l + 1 : 0, n.right ? r + 1 : 0);
    EXPECT_EQ(n.height, expected);
    return n.height;
}

TEST(CowBtree, ThreeAscendingKeysDoNotRotateTheFourthDoes)
{
    Tree t;
    for (int k : {1, 2, 3})
        EXPECT_TRUE(t.InsertUnlessMember(k, k));
    EXPECT_EQ(KeyOf(t.Root()), 1) << "the balance factor at the root is only 1";
    t.InsertUnlessMember(4, 4);
    const auto& root = t.Root()->ConstGet();
    EXPECT_EQ(root.key, 2);
    EXPECT_EQ(KeyOf(root.left), 1);
    EXPECT_EQ(KeyOf(root.right), 3);
    EXPECT_EQ(KeyOf(root.right->ConstGet().right), 4);

    Tree zigzag;
    for (int k : {3, 1, 2})
        zigzag.InsertUnlessMember(k, k);
    EXPECT_EQ(KeyOf(zigzag.Root()), 3) << "3, 1, 2 does not rotate either";
    EXPECT_EQ(KeyOf(zigzag.Root()->ConstGet().left), 1);
}

// The tree's rules written out plainly (recursive insertion, single rotations, a missing child
// counting as height 0 in the balance): random insertions give the same shape, node for node.
struct Model {
    int key;
    std::unique_ptr<Model> left, right;
    int height = 0;
    explicit Model(int k) : key(k) {}
};

int ModelHeight(const std::unique_ptr<Model>& m) { return m ? m->height : 0; }

void ModelUpdate(Model& m)
{
    const int l = m.left ? m.left->height + 1 : 0;
    const int r = m.right ? m.right->height + 1 : 0;
    m.height = std::max(l, r);
}

void ModelBalance(std::unique_ptr<Model>& link)
{
    const int d = ModelHeight(link->right) - ModelHeight(link->left);
    if (d >= 2 || d <= -2) {
        std::unique_ptr<Model>& side = d >= 2 ? link->right : link->left;
        std::unique_ptr<Model> child = std::move(side);
        std::unique_ptr<Model>& inner = d >= 2 ? child->left : child->right;
        side = std::move(inner);
        ModelUpdate(*link);
        inner = std::move(link);
        ModelUpdate(*child);
        link = std::move(child);
    }
}

bool ModelInsert(std::unique_ptr<Model>& link, int key)
{
    if (!link) {
        link = std::make_unique<Model>(key);
        return true;
    }
    if (key == link->key)
        return false;
    std::unique_ptr<Model>& side = key < link->key ? link->left : link->right;
    const bool existed = side != nullptr;
    if (!ModelInsert(side, key))
        return false;
    if (existed)
        ModelBalance(side);
    ModelUpdate(*link);
    return true;
}

void Shape(const Tree::Handle* h, std::vector<int>& out)
{
    if (!h) {
        out.push_back(-1);
        return;
    }
    out.push_back(h->ConstGet().key);
    out.push_back(h->ConstGet().height);
    Shape(h->ConstGet().left, out);
    Shape(h->ConstGet().right, out);
}

void Shape(const std::unique_ptr<Model>& m, std::vector<int>& out)
{
    if (!m) {
        out.push_back(-1);
        return;
    }
    out.push_back(m->key);
    out.push_back(m->height);
    Shape(m->left, out);
    Shape(m->right, out);
}

TEST(CowBtree, InsertionShapesFollowTheRules)
{
    std::mt19937 rng(3);
    for (int round = 0; round < 20; ++round) {
        Tree t;
        std::unique_ptr<Model> model;
        for (int i = 0; i < 300; ++i) {
            const int key = round % 2 ? static_cast<int>(rng() % 1000) : (i % 2 ? 1000 - i : i);  // random, zig-zag
            const bool inserted = ModelInsert(model, key);
            if (inserted)
                ModelBalance(model);
            EXPECT_EQ(t.InsertUnlessMember(key, i), inserted);
        }
        std::vector<int> got, expected;
        Shape(t.Root(), got);
        Shape(model, expected);
        ASSERT_EQ(got, expected) << "round " << round;
    }
}

TEST(CowBtree, RemovingATwoChildNodeUsesItsSuccessor)
{
    Tree t;
    for (int k : {4, 2, 6, 1, 3, 5, 7})
        t.InsertUnlessMember(k, k);
    EXPECT_TRUE(t.Remove(4));
    EXPECT_EQ(KeyOf(t.Root()), 5);
    EXPECT_EQ(t.Count(), 6);
    CheckNode(t.Root(), -1000, 1000);
    EXPECT_TRUE(t.Remove(6));
    EXPECT_FALSE(t.IsMember(6));
    CheckNode(t.Root(), -1000, 1000);
}

TEST(CowBtree, IterationBothWays)
{
    Tree t;
    for (int k : {8, 3, 10, 1, 6, 14, 4, 7, 13})
        t.InsertUnlessMember(k, -k);
    std::vector<int> up, down;
    cow_BtreeIterator<int, int> it(t);
    for (it.First(); it.NotDone(); it.Next())
        up.push_back(it.Key());
    for (it.Last(); it.NotDone(); it.Previous())
        down.push_back(it.Key());
    EXPECT_EQ(up, (std::vector<int>{1, 3, 4, 6, 7, 8, 10, 13, 14}));
    EXPECT_EQ(down, (std::vector<int>{14, 13, 10, 8, 7, 6, 4, 3, 1}));
    // A stack deeper than the iterator's own array moves to the heap with every link kept.
    it.First();
    for (int i = 0; i < 40; ++i)
        it.Push(t.Root());
    EXPECT_EQ(it.Depth(), 43);
    std::vector<int> deep;
    for (; it.NotDone(); it.Next())
        deep.push_back(it.Key());
    ASSERT_EQ(deep.size(), 40u * 4 + 9);
    EXPECT_EQ(std::vector<int>(deep.begin(), deep.begin() + 4), (std::vector<int>{8, 10, 13, 14}));
    EXPECT_EQ(std::vector<int>(deep.end() - 9, deep.end()), up);
    const cow_List<int> values = cow_BtreeUtils<int, int>::cow_Values(t);
    EXPECT_EQ(values[0], -1);
    const cow_List<int> keys = cow_BtreeUtils<int, int>::cow_Keys(t);
    EXPECT_EQ(keys.Count(), 9);
}

TEST(CowBtree, CopiesAreIsolated)
{
    Tree a;
    for (int k = 0; k < 20; ++k)
        a.InsertUnlessMember(k, k);
    Tree b(a);
    b.InsertUnlessMember(100, 100);
    b.Remove(3);
    EXPECT_EQ(a.Count(), 20);
    EXPECT_TRUE(a.IsMember(3));
    EXPECT_FALSE(a.IsMember(100));
    EXPECT_EQ(b.Count(), 20);
}

TEST(CowBtree, RandomOperationsKeepOrderHeightsAndContents)
{
    std::mt19937 rng(7);
    Tree t;
    EXPECT_FALSE(t.Remove(1)) << "removing from an empty tree";
    std::map<int, int> reference;  // emplace: a present key keeps its value, as in the tree
    for (int step = 0; step < 3000; ++step) {
        const int key = static_cast<int>(rng() % 300) - 150;
        if (rng() % 3 == 0) {
            EXPECT_EQ(t.Remove(key), reference.erase(key) == 1);
        } else {
            const bool added = reference.emplace(key, step).second;
            EXPECT_EQ(t.InsertUnlessMember(key, step), added);
        }
    }
    EXPECT_EQ(t.Count(), static_cast<int>(reference.size()));
    EXPECT_EQ(Contents(t), reference);
    CheckNode(t.Root(), -100000, 100000);
}

TEST(CowBtree, StringKeysOrderByteWise)
{
    cow_Btree<cow_String, int> t;
    for (const char* k : {"beta", "Alpha", "alpha", "", "\xe9t\xe9"})
        t.InsertUnlessMember(k, 1);
    std::vector<std::string> keys;
    cow_BtreeIterator<cow_String, int> it(t);
    for (it.First(); it.NotDone(); it.Next())
        keys.push_back(it.Key().c_str());
    EXPECT_EQ(keys, (std::vector<std::string>{"", "Alpha", "alpha", "beta", "\xe9t\xe9"}));
}

TEST(CowBtree, FailedWritesOnASharedTreeChangeNothing)
{
    Tree original;
    for (int k = 0; k < 40; ++k)
        original.InsertUnlessMember(k * 3, k);
    const std::vector<zul_test::Write<Tree>> writes = {
        {"Insert", [](Tree& t) { t.InsertUnlessMember(1000, 1); }},
        {"Remove", [](Tree& t) { t.Remove(30); }},
        {"RemoveRoot", [](Tree& t) { t.Remove(KeyOf(t.Root())); }},
    };
    zul_test::ExpectFailedWritesChangeNothing(original, Contents, writes);
}

}  // namespace

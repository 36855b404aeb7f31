// The chained hash table: chain order, iteration positions, caller-given hash and equality.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <stdexcept>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

#include "cow/cow_HashTable.h"
#include "mem/mem_Memory.h"
#include "omi/omi_HashValue.h"

namespace {

using NumberToAddress = HashTable<unsigned int, void*>;

void* Address(uintptr_t n)
{
    return reinterpret_cast<void*>(n);
}

int ByValue(const unsigned int& key, unsigned int buckets)
{
    return static_cast<int>(key % buckets);
}

// (bucket, key, value) of every entry in iteration order.
template <class K, class V>
std::vector<std::tuple<unsigned int, K, V>> Snapshot(const HashTable<K, V>& t)
{
    std::vector<std::tuple<unsigned int, K, V>> seen;
    for (HashTablePosition p = t.FirstPosition(); p.IsValid(); p = t.NextPosition(p))
        seen.emplace_back(p.bucket, t.EntryAt(p)->Key(), t.EntryAt(p)->Value());
    return seen;
}

TEST(CowHashTable, ChainsTakeNewKeysAtTheHeadAndKeepOneEntryPerKey)
{
    NumberToAddress t(5);
    for (unsigned int k : {7u, 2u, 12u, 4u, 0u})
        t.Insert(k, Address(k), &ByValue);
    t.Insert(2, Address(99), &ByValue);  // a present key: its value is replaced in place
    HashTablePosition p = t.FirstPosition();
    std::vector<std::tuple<unsigned int, unsigned int, void*>> seen;  // (bucket, key, value)
    for (; p.IsValid(); p = t.NextPosition(p))
        seen.emplace_back(p.bucket, t.EntryAt(p)->Key(), t.EntryAt(p)->Value());
    const std::vector<std::tuple<unsigned int, unsigned int, void*>> expected = {
        {0, 0, Address(0)}, {2, 12, Address(12)}, {2, 2, Address(99)}, {2, 7, Address(7)}, {4, 4, Address(4)}};
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(p.bucket, 0u);
    EXPECT_EQ(p.place, 0u);
    void* out = Address(1);
    EXPECT_FALSE(t.LookUp(17, out, &ByValue)) << "in a filled bucket, not in its chain";
    EXPECT_EQ(out, Address(1)) << "a failed look-up leaves the output alone";
    EXPECT_TRUE(t.LookUp(7, out, &ByValue));
    EXPECT_EQ(out, Address(7));
}

TEST(CowHashTable, CustomEquality)
{
    NumberToAddress modulo(4);  // 11, 15 and 19 all hash to bucket 3
    auto sameTens = [](const unsigned int& a, const unsigned int& b) { return a / 10 == b / 10; };
    modulo.Insert(11, Address(1), &ByValue, sameTens);
    modulo.Insert(15, Address(2), &ByValue, sameTens);  // equal to 11 by this rule
    void* found = nullptr;
    EXPECT_TRUE(modulo.LookUp(19, found, &ByValue, sameTens));
    EXPECT_EQ(found, Address(2));
    EXPECT_EQ(Snapshot(modulo).size(), 1u);
}

TEST(CowHashTable, BadBucketIndexesAreRefused)
{
    NumberToAddress none(0);
    void* out = nullptr;
    EXPECT_THROW(none.Insert(1, Address(1)), nex_AssertException);
    EXPECT_THROW(none.LookUp(1, out), nex_AssertException);
    NumberToAddress t(4);
    EXPECT_THROW(t.Insert(1, Address(1), [](const unsigned int&, unsigned int n) { return int(n); }), nex_AssertException);
}

TEST(CowHashTable, FailedInsertIntoAFilledChainChangesNothing)
{
    NumberToAddress t(2);
    for (unsigned int k = 0; k < 6; ++k)
        t.Insert(k, Address(k + 100), &ByValue);
    const auto before = Snapshot(t);
    mem_TestFailAllocation(1);
    EXPECT_ANY_THROW(t.Insert(8, Address(8), &ByValue));
    mem_TestFailAllocation(0);
    EXPECT_EQ(Snapshot(t), before);
    // Overwriting a present key allocates nothing and so cannot fail.
    mem_TestFailAllocation(1);
    t.Insert(4, Address(44), &ByValue);
    const long pending = mem_TestFailAllocationPending();
    mem_TestFailAllocation(0);
    EXPECT_EQ(pending, 1);
    void* out = nullptr;
    ASSERT_TRUE(t.LookUp(4, out, &ByValue));
    EXPECT_EQ(out, Address(44));
}

// A key type without a default hash whose copy can be made to throw.
struct Name {
    int id;
    static bool failCopies;
    explicit Name(int i) : id(i) {}
    Name(const Name& o) : id(o.id)
    {
        if (failCopies)
            throw std::runtime_error("copy");
    }
    Name& operator=(const Name&) = default;
    bool operator==(const Name& o) const { return id == o.id; }
};
bool Name::failCopies = false;

int HashName(const Name& n, unsigned int buckets)
{
    return n.id % static_cast<int>(buckets);
}

TEST(CowHashTable, KeysWithoutADefaultHashNeedAHashFunction)
{
    HashTable<Name, int> t(3);
    EXPECT_THROW(t.Insert(Name(1), 1), nex_AssertException);
    t.Insert(Name(1), 10, &HashName);
    t.Insert(Name(4), 40, &HashName);
    Name::failCopies = true;
    EXPECT_THROW(t.Insert(Name(7), 70, &HashName), std::runtime_error);
    Name::failCopies = false;
    int out = 0;
    EXPECT_FALSE(t.LookUp(Name(7), out, &HashName));
    const HashTablePosition head = t.FirstPosition();
    ASSERT_TRUE(head.IsValid());
    EXPECT_EQ(head.bucket, 1u);
    EXPECT_EQ(t.EntryAt(head)->Key().id, 4) << "the failed entry did not reach the chain";
    ASSERT_TRUE(t.LookUp(Name(1), out, &HashName));
    EXPECT_EQ(out, 10);
}

TEST(CowHashTable, RandomInsertsAgreeWithUnorderedMapAndIterateInChainOrder)
{
    std::mt19937 rng(11);
    for (unsigned int buckets : {1u, 13u, 256u}) {
        NumberToAddress t(buckets);
        std::unordered_map<unsigned int, void*> reference;
        std::vector<std::vector<unsigned int>> chains(buckets);  // newest first
        for (int step = 0; step < 3000; ++step) {
            const unsigned int key = rng() % 1500 + (rng() % 2 ? 0x80000000u : 0u);
            void* value = Address(static_cast<uintptr_t>(step) + 1);
            if (!reference.count(key)) {
                auto& chain = chains[HashValue(key, buckets)];
                chain.insert(chain.begin(), key);
            }
            reference[key] = value;
            t.Insert(key, value);
        }
        std::vector<std::tuple<unsigned int, unsigned int, void*>> expected;
        for (unsigned int b = 0; b < buckets; ++b)
            for (unsigned int key : chains[b])
                expected.emplace_back(b, key, reference[key]);
        EXPECT_EQ(Snapshot(t), expected) << buckets;
        for (const auto& kv : reference) {
            void* out = nullptr;
            ASSERT_TRUE(t.LookUp(kv.first, out));
            EXPECT_EQ(out, kv.second);
        }
        void* out = Address(1);
        EXPECT_FALSE(t.LookUp(1500u, out));
        EXPECT_EQ(out, Address(1));
    }
}

TEST(CowHashTable, AddressKeysWithTheDefaultHash)
{
    HashTable<void*, unsigned int> t(64);
    std::vector<char> storage(16 * 2000);
    for (unsigned int i = 0; i < 2000; ++i)
        t.Insert(&storage[16 * i], i);
    unsigned int out = 0;
    for (unsigned int i = 0; i < 2000; ++i) {
        ASSERT_TRUE(t.LookUp(&storage[16 * i], out));
        EXPECT_EQ(out, i);
    }
    EXPECT_FALSE(t.LookUp(&storage[8], out));
    EXPECT_EQ(Snapshot(t).size(), 2000u);
    t.Clear();  // empty and usable again
    EXPECT_FALSE(t.FirstPosition().IsValid());
    EXPECT_FALSE(t.LookUp(&storage[16], out));
    t.Insert(&storage[16], 7);
    EXPECT_TRUE(t.LookUp(&storage[16], out));
    EXPECT_EQ(out, 7u);
}

}  // namespace

// The chained hash table and the 128-bit flag key.
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "cow/cow_HashTable.h"
#include "cow/cow_LongKey.h"
#include "mem/mem_Memory.h"

template class HashTable<unsigned int, void*>;
template class HashTable<void*, unsigned int>;

namespace {

using NumberToAddress = HashTable<unsigned int, void*>;

void* Address(uintptr_t n)
{
    return reinterpret_cast<void*>(n);
}

int AllInBucketZero(const unsigned int&, unsigned int)
{
    return 0;
}

int ByValue(const unsigned int& key, unsigned int buckets)
{
    return static_cast<int>(key % buckets);
}

TEST(CowHashTable, InsertingAKeyTwiceKeepsOneEntryWithTheSecondValue)
{
    NumberToAddress t(7);
    t.Insert(3, Address(1));
    t.Insert(3, Address(2));
    void* out = nullptr;
    ASSERT_TRUE(t.LookUp(3, out));
    EXPECT_EQ(out, Address(2));
    HashTablePosition p = t.FirstPosition();
    EXPECT_TRUE(p.IsValid());
    EXPECT_FALSE(t.NextPosition(p).IsValid());
}

TEST(CowHashTable, NewestEntryOfABucketIsAtTheChainHead)
{
    NumberToAddress t(4);
    t.Insert(10, Address(10), &AllInBucketZero);
    t.Insert(20, Address(20), &AllInBucketZero);
    const HashTablePosition first = t.FirstPosition();
    EXPECT_EQ(first.bucket, 0u);
    EXPECT_EQ(t.EntryAt(first)->Key(), 20u);
    void* out = nullptr;
    EXPECT_TRUE(t.LookUp(10, out, &AllInBucketZero));
    EXPECT_EQ(out, Address(10));
    EXPECT_FALSE(t.LookUp(30, out, &AllInBucketZero));
}

TEST(CowHashTable, LookUpOnAnEmptyTableLeavesTheOutputAlone)
{
    NumberToAddress t(5);
    void* out = Address(99);
    EXPECT_FALSE(t.LookUp(1, out));
    EXPECT_EQ(out, Address(99));
    EXPECT_FALSE(t.FirstPosition().IsValid());
}

TEST(CowHashTable, IterationVisitsBucketsInOrderAndChainsFromTheHead)
{
    NumberToAddress t(5);
    for (unsigned int k : {7u, 2u, 12u, 4u, 0u})
        t.Insert(k, Address(k), &ByValue);
    std::vector<std::pair<unsigned int, unsigned int>> seen;  // (bucket, key)
    HashTablePosition p = t.FirstPosition();
    for (; p.IsValid(); p = t.NextPosition(p))
        seen.emplace_back(p.bucket, t.EntryAt(p)->Key());
    const std::vector<std::pair<unsigned int, unsigned int>> expected = {{0, 0}, {2, 12}, {2, 2}, {2, 7}, {4, 4}};
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(p.bucket, 0u);
    EXPECT_EQ(p.place, 0u);
}

TEST(CowHashTable, ClearLeavesTheTableUsable)
{
    NumberToAddress t(3);
    for (unsigned int k = 0; k < 50; ++k)
        t.Insert(k, Address(k + 1));
    t.Clear();
    void* out = nullptr;
    EXPECT_FALSE(t.LookUp(5, out));
    t.Insert(5, Address(6));
    EXPECT_TRUE(t.LookUp(5, out));
    EXPECT_EQ(t.BucketCount(), 3u);
}

TEST(CowHashTable, CustomEqualityAndAddressKeys)
{
    HashTable<void*, unsigned int> t(8);
    t.Insert(Address(0x1000), 1);
    t.Insert(Address(0x2000), 2);
    unsigned int out = 0;
    EXPECT_TRUE(t.LookUp(Address(0x2000), out));
    EXPECT_EQ(out, 2u);

    NumberToAddress modulo(4);
    auto sameTens = [](const unsigned int& a, const unsigned int& b) { return a / 10 == b / 10; };
    modulo.Insert(11, Address(1), &AllInBucketZero, sameTens);
    modulo.Insert(15, Address(2), &AllInBucketZero, sameTens);  // equal to 11 by this rule
    void* found = nullptr;
    EXPECT_TRUE(modulo.LookUp(19, found, &AllInBucketZero, sameTens));
    EXPECT_EQ(found, Address(2));
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

TEST(CowHashTable, FailedInsertLeavesTheTableAsItWas)
{
    NumberToAddress t(4);
    t.Insert(1, Address(1));
    mem_TestFailAllocation(1);
    EXPECT_ANY_THROW(t.Insert(2, Address(2)));
    mem_TestFailAllocation(0);
    void* out = nullptr;
    EXPECT_FALSE(t.LookUp(2, out));
    EXPECT_TRUE(t.LookUp(1, out));
}

TEST(CowLongKey, OrderIsThatOf128BitNumbers)
{
    LongKey high, low;
    const unsigned int b96 = 96;
    high.setBits(1, &b96);
    std::vector<unsigned int> all;
    for (unsigned int b = 0; b < 96; ++b)
        all.push_back(b);
    low.setBits(static_cast<unsigned int>(all.size()), all.data());
    EXPECT_TRUE(high > low);
    EXPECT_TRUE(low < high);
    EXPECT_FALSE(high < high);
    EXPECT_FALSE(high > high);

    LongKey bit0, bit1;
    const unsigned int zero = 0, one = 1;
    bit0.setBits(1, &zero);
    bit1.setBits(1, &one);
    EXPECT_TRUE(bit0 < bit1);
}

TEST(CowLongKey, BitsAcrossWordBoundariesAndCombinations)
{
    LongKey k;
    const unsigned int bits[] = {5, 5, 40};
    k.setBits(3, bits);
    EXPECT_TRUE(k.hasBit(5));
    EXPECT_TRUE(k.hasBit(40));
    EXPECT_FALSE(k.hasBit(41));
    k.setBits(0, nullptr);

    LongKey edges;
    const unsigned int boundary[] = {0, 31, 32, 63, 64, 127};
    edges.setBits(6, boundary);
    for (unsigned int b : boundary)
        EXPECT_TRUE(edges.hasBit(b)) << b;
    EXPECT_EQ(edges.Word(0), 0x80000001u);
    EXPECT_EQ(edges.Word(3), 0x80000000u);

    const unsigned int outside[] = {128, 1000};
    LongKey untouched;
    untouched.setBits(2, outside);
    EXPECT_EQ(untouched, LongKey()) << "bits past 127 are ignored";
    EXPECT_FALSE(untouched.hasBit(128));

    EXPECT_EQ((k | edges) & k, k);
    EXPECT_NE(k & edges, k);
    LongKey both = k;
    both |= edges;
    EXPECT_TRUE(both.hasBit(127) && both.hasBit(40));
}

}  // namespace

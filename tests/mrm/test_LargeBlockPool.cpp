// Large-block pools over one block table: block states, tallies and peaks, slot reuse with
// rising ids, transfer, and failures.
#include <gtest/gtest.h>

#include <cstring>

#include "mem/mem_Memory.h"
#include "mrm/mrm_Exception.h"
#include "mrm/mrm_LargeBlockPool.h"
#include "nex/nex_OutOfMemoryException.h"

namespace {

class MrmLargeBlockPool : public ::testing::Test {
protected:
    mrm_BlockTable table;
    mrm_LargeBlockPool pool{table, "a", mrm_Capacity()};
    mrm_LargeBlockPool other{table, "b", mrm_Capacity()};
};

void ExpectTallies(const mrm_Consumption& c, int declared, int pinned, double pinnedBytes, double peak,
                   double unpinned1, double unpinned0)
{
    EXPECT_EQ(c.GetDeclaredBlocks(), declared);
    EXPECT_EQ(c.GetPinnedBlocks(), pinned);
    EXPECT_EQ(c.GetPinnedBytes(), pinnedBytes);
    EXPECT_EQ(c.GetPeakPinnedBytes(), peak);
    EXPECT_EQ(c.GetUnpinnedBytes1(), unpinned1);
    EXPECT_EQ(c.GetUnpinnedBytes0(), unpinned0);
}

TEST(MrmRoundToBlock, NextMultipleOf64KiB)
{
    EXPECT_EQ(mrm_LargeBlockPool::RoundToBlock(0), 0);
    EXPECT_EQ(mrm_LargeBlockPool::RoundToBlock(1), 65536);
    EXPECT_EQ(mrm_LargeBlockPool::RoundToBlock(65536), 65536);
    EXPECT_EQ(mrm_LargeBlockPool::RoundToBlock(65537), 131072);
}

TEST_F(MrmLargeBlockPool, BlockStatesMoveTheTallies)
{
    mrm_MemBlockID id = pool.Declare(100000);
    EXPECT_EQ(pool.GetSize(id), 131072);
    EXPECT_EQ(pool.GetPointer(id), nullptr);  // declared, no memory
    ExpectTallies(pool.GetConsumption(), 1, 0, 0, 0, 0, 0);

    ASSERT_FALSE(pool.Acquire(id));
    void* memory = pool.GetPointer(id);
    ASSERT_NE(memory, nullptr);
    std::memset(memory, 0x5A, 131072);
    ExpectTallies(pool.GetConsumption(), 1, 1, 131072, 131072, 0, 0);

    EXPECT_FALSE(pool.Unpin(id, mrm_ReleaseType1));
    EXPECT_EQ(pool.GetPointer(id), nullptr);
    ExpectTallies(pool.GetConsumption(), 1, 0, 0, 131072, 131072, 0);
    EXPECT_FALSE(pool.Pin(id));
    EXPECT_EQ(pool.GetPointer(id), memory);  // the same memory again
    EXPECT_FALSE(pool.Unpin(id, mrm_ReleaseType0));
    ExpectTallies(pool.GetConsumption(), 1, 0, 0, 131072, 0, 131072);

    // The table adds up all pools (peaks apart); a second block raises the table's peak.
    mrm_MemBlockID second = other.Declare(1);
    ASSERT_FALSE(other.Acquire(second));
    const mrm_Consumption sum = pool.GetConsumption() + other.GetConsumption();
    ExpectTallies(table.GetConsumption(), sum.GetDeclaredBlocks(), sum.GetPinnedBlocks(), sum.GetPinnedBytes(),
                  131072, sum.GetUnpinnedBytes1(), sum.GetUnpinnedBytes0());
    EXPECT_EQ(sum.GetPeakPinnedBytes(), 131072 + 65536);
    EXPECT_FALSE(pool.Pin(id));
    ExpectTallies(table.GetConsumption(), 2, 2, 196608, 196608, 0, 0);

    EXPECT_FALSE(pool.Release(id));  // released while unpinned: counted back, then taken off
    EXPECT_EQ(id, 0u);
    ExpectTallies(pool.GetConsumption(), 0, 0, 0, 131072, 0, 0);
    ExpectTallies(table.GetConsumption(), 1, 1, 65536, 196608, 0, 0);
    EXPECT_FALSE(other.Release(second));
    EXPECT_FALSE(table.GetConsumption().IsZero());  // the peak remains
    EXPECT_EQ(table.GetBlockCount(), 0);
}

TEST_F(MrmLargeBlockPool, OperationsOnTheWrongStateFailAndChangeNothing)
{
    mrm_MemBlockID id = pool.Declare(10);
    const mrm_MemBlockID unknown = id + 1000;
    EXPECT_TRUE(pool.Pin(id));  // no memory yet
    EXPECT_TRUE(pool.Unpin(id, mrm_ReleaseType1));
    ASSERT_FALSE(pool.Acquire(id));
    const mrm_Consumption before = pool.GetConsumption();
    EXPECT_TRUE(pool.Acquire(id));  // holds memory already
    EXPECT_TRUE(pool.Pin(id));
    EXPECT_TRUE(pool.Unpin(id, mrm_ReleaseTypeNone));
    EXPECT_TRUE(pool.Acquire(unknown));
    EXPECT_TRUE(pool.Discard(unknown));
    mrm_MemBlockID copy = unknown;
    EXPECT_TRUE(pool.Release(copy));
    EXPECT_EQ(copy, unknown);
    EXPECT_EQ(pool.GetPointer(unknown), nullptr);
    EXPECT_THROW(pool.GetSize(unknown), mrm_Exception);
    EXPECT_THROW(pool.Declare(-1), mrm_Exception);
    EXPECT_THROW(pool.Declare(mrm_LargeBlockPool::MaxBlockSize + 1), mrm_Exception);
    EXPECT_EQ(pool.GetConsumption(), before);
    EXPECT_EQ(table.GetBlockCount(), 1);
}

TEST_F(MrmLargeBlockPool, SlotsAreReusedButIdsKeepRising)
{
    mrm_MemBlockID a = pool.Declare(1), b = pool.Declare(1), c = pool.Declare(1);
    const int slotOfB = table.GetSlotOf(b);
    EXPECT_FALSE(pool.Release(b));
    EXPECT_EQ(table.GetSlotOf(b), -1);
    const mrm_MemBlockID d = pool.Declare(1);
    EXPECT_EQ(table.GetSlotOf(d), slotOfB);
    EXPECT_GT(d, c);
    EXPECT_EQ(table.GetSlotCount(), 3);

    // Wrap-around skips 0 and every id still present.
    table.SetLastId(0xFFFFFFFEu);
    EXPECT_EQ(pool.Declare(1), 0xFFFFFFFFu);
    const mrm_MemBlockID wrapped = pool.Declare(1);
    EXPECT_EQ(wrapped, 2u);  // 1 is block a
    EXPECT_EQ(table.Find(a)->id, a);
    EXPECT_EQ(table.Find(wrapped)->pool, &pool);
    EXPECT_EQ(pool.GetConsumption().GetDeclaredBlocks(), 5);
}

TEST_F(MrmLargeBlockPool, DiscardDropsMemoryButKeepsTheRecord)
{
    mrm_MemBlockID id = pool.Declare(1);
    ASSERT_FALSE(pool.Acquire(id));
    ASSERT_FALSE(pool.Unpin(id, mrm_ReleaseType0));
    EXPECT_FALSE(pool.Discard(id));
    ExpectTallies(pool.GetConsumption(), 1, 0, 0, 65536, 0, 0);
    EXPECT_TRUE(pool.Pin(id));
    EXPECT_FALSE(pool.Acquire(id));  // acquired afresh
    EXPECT_NE(pool.GetPointer(id), nullptr);
    EXPECT_FALSE(pool.Discard(id));
    ExpectTallies(pool.GetConsumption(), 1, 0, 0, 65536, 0, 0);
}

TEST_F(MrmLargeBlockPool, TransferMovesTheChargeBetweenPools)
{
    mrm_MemBlockID pinned = pool.Declare(1), unpinned = pool.Declare(65537);
    ASSERT_FALSE(pool.Acquire(pinned));
    ASSERT_FALSE(pool.Acquire(unpinned));
    ASSERT_FALSE(pool.Unpin(unpinned, mrm_ReleaseType1));
    const mrm_Consumption table0 = table.GetConsumption();

    EXPECT_TRUE(mrm_LargeBlockPool::TransferMemory(pinned, pool, other));
    EXPECT_TRUE(mrm_LargeBlockPool::TransferMemory(unpinned, pool, other));
    ExpectTallies(pool.GetConsumption(), 0, 0, 0, 196608, 0, 0);
    ExpectTallies(other.GetConsumption(), 2, 1, 65536, 65536, 131072, 0);
    EXPECT_EQ(table.GetConsumption(), table0);

    EXPECT_THROW(mrm_LargeBlockPool::TransferMemory(pinned, pool, other), mrm_Exception);  // not pool's any more
    mrm_BlockTable elsewhere;
    mrm_LargeBlockPool foreign(elsewhere, "c", mrm_Capacity());
    EXPECT_THROW(mrm_LargeBlockPool::TransferMemory(pinned, other, foreign), mrm_Exception);

    // Released through any pool, the charged pool pays; counting the unpinned block back as
    // pinned on the way out raises the peak.
    EXPECT_FALSE(pool.Release(unpinned));
    ExpectTallies(other.GetConsumption(), 1, 1, 65536, 196608, 0, 0);
}

TEST_F(MrmLargeBlockPool, AllocationFailuresChangeNothing)
{
    for (int k = 0; k < 16; ++k)
        pool.Declare(1);  // fills the first map and slot arrays: the next one grows both
    int failures = 0;
    bool succeeded = false;
    for (long n = 1; !succeeded && n < 10; ++n) {
        const mrm_Consumption declared = table.GetConsumption();
        const mrm_MemBlockID last = table.GetLastId();
        mem_TestFailAllocation(n);
        try {
            pool.Declare(1);
            succeeded = true;
        } catch (const nex_OutOfMemoryException&) {
            ++failures;
            EXPECT_EQ(table.GetConsumption(), declared);
            EXPECT_EQ(table.GetLastId(), last);
            EXPECT_EQ(table.GetSlotCount(), 16);
            EXPECT_EQ(table.GetBlockCount(), 16);
        }
        mem_TestFailAllocation(0);
    }
    EXPECT_TRUE(succeeded);
    EXPECT_GE(failures, 3);  // the record, the map and the slot arrays
    EXPECT_EQ(table.GetSlotCount(), 17);

    mrm_MemBlockID id = pool.Declare(1);
    const mrm_Consumption before = table.GetConsumption();
    mem_TestFailAllocation(1);
    EXPECT_THROW((void)pool.Acquire(id), nex_OutOfMemoryException);
    mem_TestFailAllocation(0);
    EXPECT_EQ(table.GetConsumption(), before);
    EXPECT_EQ(pool.GetPointer(id), nullptr);
    EXPECT_FALSE(pool.Acquire(id));
}

}  // namespace

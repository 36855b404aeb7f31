// Small-block pools charging their provider, and the manager with its factories.
#include <gtest/gtest.h>

#include <cstring>

#include "mem/mem_Memory.h"
#include "mrm/mrm_Exception.h"
#include "mrm/mrm_Manager.h"
#include "nex/nex_OutOfMemoryException.h"

namespace {

mrm_SmallBlockCapacity Capacity(double factor, double minimum)
{
    mrm_SmallBlockCapacity c;
    c.SetOverheadFactor(factor);
    c.SetOutToClientLoHi(minimum, 0.0);
    return c;
}

TEST(MrmPool, ReserveIsChargedInSteps)
{
    mrm_BlockTable table;
    mrm_LargeBlockPool provider(table, "p", mrm_Capacity());
    {
        mrm_Pool pool(provider, "s", Capacity(1.0, 0.0));
        void* small = pool.Alloc(10);
        std::memset(small, 1, 10);
        EXPECT_EQ(pool.GetConsumption(), mrm_SmallBlockConsumption(10, 1, 65536));
        EXPECT_EQ(provider.GetConsumption().GetPinnedBytes(), 65536);
        EXPECT_EQ(provider.GetConsumption().GetDeclaredBlocks(), 1);
        EXPECT_EQ(provider.GetPointer(pool.GetReserveId()), nullptr);  // the reserve owns no memory
        pool.Free(small);
        EXPECT_EQ(pool.GetConsumption(), mrm_SmallBlockConsumption(0, 0, 65536));  // never shrinks

        void* big = pool.Alloc(70000);  // needs two steps: the reserve grows by one
        std::memset(big, 2, 70000);
        EXPECT_EQ(pool.GetConsumption().GetReserved(), 131072);
        EXPECT_EQ(provider.GetConsumption().GetPinnedBlocks(), 1);
        EXPECT_EQ(provider.GetConsumption().GetPeakPinnedBytes(), 131072);
        pool.Free(big);
        pool.Free(nullptr);
        EXPECT_THROW((void)pool.Alloc(-1), mrm_Exception);
    }
    // The ended pool gave its reserve back.
    EXPECT_EQ(provider.GetConsumption().GetDeclaredBlocks(), 0);
    EXPECT_EQ(provider.GetConsumption().GetPinnedBytes(), 0);
    EXPECT_EQ(table.GetBlockCount(), 0);
}

TEST(MrmPool, MinimumOverheadAndProviderPinnedBytes)
{
    mrm_BlockTable table;
    mrm_LargeBlockPool provider(table, "p", mrm_Capacity());
    mrm_Pool pool(provider, "s", Capacity(2.0, 200000.0));
    void* p = pool.Alloc(1);
    EXPECT_EQ(pool.GetConsumption().GetReserved(), 262144);  // the minimum, rounded up
    void* q = pool.Alloc(150000);                             // 2 x 150001 bytes out
    EXPECT_EQ(pool.GetConsumption().GetReserved(), 327680);
    pool.Free(p);
    pool.Free(q);

    // What the provider already has pinned counts against the reservation.
    mrm_LargeBlockPool busy(table, "b", mrm_Capacity());
    mrm_MemBlockID block = busy.Declare(3 * 65536);
    ASSERT_FALSE(busy.Acquire(block));
    mrm_Pool lean(busy, "l", Capacity(1.0, 0.0));
    void* r = lean.Alloc(100);
    EXPECT_EQ(lean.GetReserveId(), 0u);
    EXPECT_EQ(lean.GetConsumption(), mrm_SmallBlockConsumption(100, 1, 0));
    lean.Free(r);
}

TEST(MrmPool, FailedAllocationChangesNothing)
{
    mrm_BlockTable table;
    mrm_LargeBlockPool provider(table, "p", mrm_Capacity());
    mrm_Pool pool(provider, "s", Capacity(1.0, 0.0));
    bool succeeded = false;
    for (long n = 1; !succeeded && n < 10; ++n) {
        mem_TestFailAllocation(n);
        try {
            pool.Free(pool.Alloc(10));
            succeeded = true;
        } catch (const nex_OutOfMemoryException&) {
            mem_TestFailAllocation(0);
            EXPECT_TRUE(pool.GetConsumption().IsZero());
            EXPECT_TRUE(provider.GetConsumption().IsZero());
        }
        mem_TestFailAllocation(0);
    }
    EXPECT_TRUE(succeeded);
}

TEST(MrmManager, FactoriesStartFindAndEndPoolsByLabel)
{
    mrm_Manager& manager = mrm_Manager::Instance();
    mrm_Capacity limits;
    limits.SetLoHi(1e6, 2e6);
    manager.DefinePool("solver", limits);

    EXPECT_EQ(mrm_LargeBlockPoolFactory::Startup("nothing defined"), nullptr);
    mrm_LargeBlockPool* solver = mrm_LargeBlockPoolFactory::Startup("solver");
    ASSERT_NE(solver, nullptr);
    EXPECT_EQ(mrm_GetCapacity(*solver), limits);
    EXPECT_THROW(mrm_LargeBlockPoolFactory::Startup("solver"), mrm_Exception);
    EXPECT_EQ(mrm_LargeBlockPoolFactory::GetPool("solver"), solver);
    EXPECT_EQ(mrm_LargeBlockPoolFactory::GetPool("unknown"), manager.GetDefaultPool());
    EXPECT_EQ(&solver->GetBlockTable(), &manager.GetBlockTable());

    mrm_LargeBlockPool* spot = mrm_LargeBlockPoolFactory::SpotStartup("mesher", "solver", mrm_Capacity());
    EXPECT_EQ(mrm_GetCapacity(*spot), limits);  // the definition wins over the given capacity
    EXPECT_NE(spot->GetAltNumber(), solver->GetAltNumber());

    mrm_Pool* small = mrm_PoolFactory::SpotStartup("strings", "solver", mrm_SmallBlockCapacity());
    EXPECT_EQ(&small->ConstGetProvider(), solver);
    EXPECT_EQ(small->ConstGetLabel(), mrm_Label("strings"));
    void* p = small->Alloc(32);
    EXPECT_EQ(mrm_GetConsumption(*solver).GetPinnedBytes(), 65536);
    EXPECT_THROW(mrm_LargeBlockPoolFactory::Shutdown(solver), mrm_Exception);  // still a provider
    small->Free(p);
    mrm_PoolFactory::Shutdown(small);
    EXPECT_THROW(mrm_PoolFactory::Shutdown(small), mrm_Exception);

    mrm_MemBlockID block = solver->Declare(1);
    ASSERT_FALSE(solver->Acquire(block));
    mrm_LargeBlockPoolFactory::Shutdown(solver);  // releases its blocks
    EXPECT_EQ(manager.GetBlockTable().Find(block), nullptr);
    EXPECT_EQ(mrm_LargeBlockPoolFactory::GetPool("solver"), manager.GetDefaultPool());
    mrm_LargeBlockPoolFactory::Shutdown(spot);
    mrm_BlockTable elsewhere;
    mrm_LargeBlockPool stranger(elsewhere, "x", mrm_Capacity());
    EXPECT_THROW(mrm_LargeBlockPoolFactory::Shutdown(&stranger), mrm_Exception);
}

TEST(MrmManager, DefaultPoolEndsAndTheManagerStartsAfresh)
{
    mrm_LargeBlockPoolFactory::Shutdown(mrm_Manager::Instance().GetDefaultPool());
    EXPECT_EQ(mrm_LargeBlockPoolFactory::GetPool("anything"), nullptr);
    EXPECT_THROW(mrm_PoolFactory::SpotStartup("s", "anything", mrm_SmallBlockCapacity()), mrm_Exception);

    // Finalizing ends whatever is still active, with its memory.
    mrm_LargeBlockPool* left = mrm_LargeBlockPoolFactory::SpotStartup("left", "", mrm_Capacity());
    mrm_MemBlockID block = left->Declare(1);
    ASSERT_FALSE(left->Acquire(block));
    mrm_PoolFactory::SpotStartup("leftover", "left", mrm_SmallBlockCapacity());
    mrm_Manager::Finalize();
    EXPECT_FALSE(mrm_Manager::Exists());
    EXPECT_NE(mrm_Manager::Instance().GetDefaultPool(), nullptr);
    EXPECT_TRUE(mrm_Manager::Instance().GetBlockTable().GetConsumption().IsZero());
}

}  // namespace

TEST(MrmLabelPrinters, TheFourKindsPrintTheirLabelsAndOthersAreRefused)
{
    mrm_Manager& manager = mrm_Manager::Instance();
    mrm_Manager::RegisterStandardLabelPrinters(manager);
    EXPECT_STREQ(manager.PrintLabel(mrm_Manager::kJobPhaseLabel, "solve").c_str(), "job phase solve");
    EXPECT_STREQ(manager.PrintLabel(mrm_Manager::kTestLabel, "t1").c_str(), "test t1");
    EXPECT_STREQ(manager.PrintLabel(mrm_Manager::kStepPhaseLabel, "s2").c_str(), "step phase s2");
    EXPECT_STREQ(manager.PrintLabel(mrm_Manager::kVoidLabel, "x").c_str(), "(no label)");
    EXPECT_STREQ(manager.PrintLabel(7, "bare").c_str(), "bare");
    EXPECT_THROW(manager.RegisterLabelPrinter(4, nullptr), mrm_Exception);
    EXPECT_THROW(manager.RegisterLabelPrinter(-1, nullptr), mrm_Exception);
}

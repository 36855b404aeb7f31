#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <new>
#include <thread>
#include <utility>
#include <vector>

#include "mem/mem_Memory.h"

namespace {

struct ThrowerError {
    size_t size;
};

size_t g_seenSize = 0;

void RecordingThrower(size_t size)
{
    g_seenSize = size;
    throw ThrowerError{size};
}

void ReturningThrower(size_t size) { g_seenSize = size; }

// Restores the thrower and disarms the hook whatever a test does.
class MemTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_saved = mem_GetOutOfMemoryThrower();
        g_seenSize = 0;
    }
    void TearDown() override
    {
        mem_TestFailAllocation(0);
        mem_SetOutOfMemoryThrower(m_saved);
    }
    mem_OutOfMemoryThrower m_saved = nullptr;
};

}  // namespace

TEST_F(MemTest, BlocksFromEveryEntryPointAreUsableAndFreedByMemFree)
{
    // mem_OperatorNewTinyThrow, mem_Malloc and mem_Realloc are used by the tests below.
    void* a = mem_OperatorNewThrow(100);
    void* c = mem_OperatorNewThrowBuiltin(0);  // size 0 still gives a block
    ASSERT_TRUE(a && c);
    std::memset(a, 1, 100);
    mem_Free(a);
    mem_Free(c);
    mem_Free(nullptr);
}

// Blocks of every small size (the pool's) and a few larger ones: each offers all of
// mem_GoodSize(n) bytes, is aligned as the global operator new would align an object of its size,
// and overlaps no other block.
TEST_F(MemTest, BlocksOfEverySizeAreAlignedDisjointAndOfferTheirGoodSize)
{
    std::vector<std::pair<unsigned char*, size_t>> blocks;
    for (size_t n = 0; n <= 300; ++n) {
        const size_t good = mem_GoodSize(n);
        ASSERT_GE(good, n);
        auto* p = static_cast<unsigned char*>(n % 2 ? mem_OperatorNewTinyThrow(good) : mem_Malloc(good));
        ASSERT_NE(p, nullptr);
        const uintptr_t align = (n >= 16 && n % 16 == 0) ? 16 : (n > 4 ? 8 : 4);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % align, 0u) << "size " << n;
        std::memset(p, static_cast<int>(n & 0xFF), good);
        blocks.emplace_back(p, n);
    }
    for (const auto& b : blocks) {
        const size_t good = mem_GoodSize(b.second);
        for (size_t i = 0; i < good; ++i)
            ASSERT_EQ(b.first[i], static_cast<unsigned char>(b.second & 0xFF)) << "block of " << b.second;
        mem_Free(b.first);
    }
}

TEST_F(MemTest, ReallocKeepsContentsAcrossPoolAndRuntimeBlocks)
{
    char* p = static_cast<char*>(mem_Realloc(nullptr, 24));
    ASSERT_NE(p, nullptr);
    std::memcpy(p, "small block, pool sized", 24);
    size_t size = 24;
    for (int step = 0; step < 200; ++step) {  // small steps, out of the pool and on
        size += 40;
        p = static_cast<char*>(mem_Realloc(p, size));
        ASSERT_NE(p, nullptr);
        p[size - 1] = static_cast<char>(step);
    }
    EXPECT_STREQ(p, "small block, pool sized");
    for (int step = 0; step < 200; ++step)
        ASSERT_EQ(p[24 + 40 * (step + 1) - 1], static_cast<char>(step));
    p = static_cast<char*>(mem_Realloc(p, 10));  // shrinking keeps the front
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(std::memcmp(p, "small bloc", 10), 0);
    EXPECT_EQ(mem_Realloc(p, 0), nullptr);  // frees, as the runtime does
}

TEST_F(MemTest, HookFailsExactlyTheNthAllocation)
{
    mem_TestFailAllocation(2);
    mem_TestFailAllocation(0);  // disarms
    EXPECT_EQ(mem_TestFailAllocationPending(), 0);
    mem_TestFailAllocation(-5);
    EXPECT_EQ(mem_TestFailAllocationPending(), 0);
    for (int i = 0; i < 10; ++i)
        mem_Free(mem_OperatorNewThrow(8));

    mem_SetOutOfMemoryThrower(&RecordingThrower);
    mem_TestFailAllocation(3);
    EXPECT_EQ(mem_TestFailAllocationPending(), 3);
    void* first = mem_OperatorNewThrow(16);
    void* second = mem_Malloc(16);
    EXPECT_EQ(mem_TestFailAllocationPending(), 1);
    try {
        (void)mem_OperatorNewTinyThrow(24);
        FAIL() << "third allocation should fail";
    } catch (const ThrowerError& e) {
        EXPECT_EQ(e.size, 24u);
    }
    EXPECT_EQ(mem_TestFailAllocationPending(), 0);
    void* fourth = mem_OperatorNewThrow(16);  // the hook fired once and is now disarmed
    EXPECT_NE(fourth, nullptr);
    mem_Free(first);
    mem_Free(second);
    mem_Free(fourth);
}

TEST_F(MemTest, UntypedAllocationsReturnNullUnderTheHook)
{
    mem_SetOutOfMemoryThrower(&RecordingThrower);
    mem_TestFailAllocation(1);
    EXPECT_EQ(mem_Malloc(10), nullptr);
    EXPECT_EQ(g_seenSize, 0u);  // the thrower is for the throwing entry points only

    char* p = static_cast<char*>(mem_Malloc(4));
    ASSERT_NE(p, nullptr);
    std::memcpy(p, "abc", 4);
    mem_TestFailAllocation(1);
    EXPECT_EQ(mem_Realloc(p, 1 << 20), nullptr);
    EXPECT_STREQ(p, "abc");  // the old block survives a failed realloc
    mem_Free(p);
}

TEST_F(MemTest, WithoutThrowerOrWhenItReturnsBadAllocIsThrown)
{
    mem_SetOutOfMemoryThrower(&RecordingThrower);
    EXPECT_EQ(mem_SetOutOfMemoryThrower(&ReturningThrower), &RecordingThrower);  // answers the previous one
    EXPECT_EQ(mem_SetOutOfMemoryThrower(nullptr), &ReturningThrower);
    mem_TestFailAllocation(1);
    EXPECT_THROW((void)mem_OperatorNewThrow(8), std::bad_alloc);

    mem_SetOutOfMemoryThrower(&ReturningThrower);
    mem_TestFailAllocation(1);
    EXPECT_THROW((void)mem_OperatorNewThrowBuiltin(77), std::bad_alloc);
    EXPECT_EQ(g_seenSize, 77u);
}

TEST_F(MemTest, HookCountsAllocationsOfAllThreadsExactlyOnce)
{
    const int threads = 4;
    const int perThread = 2000;
    mem_TestFailAllocation(3 * perThread);
    std::atomic<int> failures{0};
    std::vector<std::thread> pool;
    for (int t = 0; t < threads; ++t) {
        pool.emplace_back([&failures] {
            for (int i = 0; i < perThread; ++i) {
                void* p = mem_Malloc(16);
                if (!p)
                    ++failures;
                mem_Free(p);
            }
        });
    }
    for (std::thread& t : pool)
        t.join();
    EXPECT_EQ(failures.load(), 1);
    EXPECT_EQ(mem_TestFailAllocationPending(), 0);
}

// Per-thread state of the memory layer, with real threads (the thread sanitizer preset runs this
// program): the pool's blocks and states across threads, per-thread objects, and the per-thread
// defaults that cow_Map answers for a missing key and array lists for blocks not made yet.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "cow/cow_1DArrayList.h"
#include "cow/cow_Map.h"
#include "mem/mem_Memory.h"

namespace {

// Blocks freed by another thread go back to the thread that made them, and a new thread takes
// over the state (and the blocks) of one that ended: neither grows the pool.
TEST(PerThreadMemory, PoolTakesBackBlocksFreedElsewhereAndReusesStatesOfEndedThreads)
{
    mem_PoolStatistics before;
    mem_GetPoolStatistics(&before);
    if (!before.enabled)
        GTEST_SKIP() << "the pool is off in this build";
    const int kBlocks = 20000;  // about 2.5 MB, ten chunks
    std::vector<void*> made(kBlocks);
    std::atomic<int> stage{0};
    std::thread maker([&] {
        for (int round = 0; round < 3; ++round) {
            for (int i = 0; i < kBlocks; ++i)
                made[i] = mem_OperatorNewTinyThrow(8 + i % 249);
            stage.store(2 * round + 1);
            while (stage.load() != 2 * round + 2)  // the main thread frees them meanwhile
                std::this_thread::yield();
        }
    });
    mem_PoolStatistics afterFirst{};
    for (int round = 0; round < 3; ++round) {
        while (stage.load() != 2 * round + 1)
            std::this_thread::yield();
        if (round == 0)
            mem_GetPoolStatistics(&afterFirst);
        for (void* p : made)
            mem_Free(p);
        stage.store(2 * round + 2);
    }
    maker.join();
    mem_PoolStatistics after;
    mem_GetPoolStatistics(&after);
    // Rounds 2 and 3 reuse the blocks of round 1 (a chunk's worth of slack for the test's own work).
    EXPECT_LE(after.carvedBytes, afterFirst.carvedBytes + (size_t(1) << 18));

    for (int t = 0; t < 20; ++t) {
        std::thread([] {
            std::vector<void*> blocks;
            for (int i = 0; i < 5000; ++i)
                blocks.push_back(mem_OperatorNewThrow(16 + i % 64));
            for (void* p : blocks)
                mem_Free(p);
        }).join();
    }
    mem_PoolStatistics churned;
    mem_GetPoolStatistics(&churned);
    EXPECT_LE(churned.threadStates, after.threadStates + 1) << "each thread takes over the state of the one before";
    EXPECT_LE(churned.carvedBytes, after.carvedBytes + (size_t(1) << 19));
}

// Per-thread objects: one per thread and tag, made on first request, destroyed at the end of
// their thread.
TEST(PerThreadMemory, ThreadObjectsAreMadeOncePerThreadAndDestroyedAtItsEnd)
{
    static std::atomic<int> made{0}, destroyed{0};
    static const char tagA = 0, tagB = 0;
    auto make = []() -> void* { ++made; return new int(0); };
    auto destroy = [](void* p) { ++destroyed; delete static_cast<int*>(p); };
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&wrong, make, destroy] {
            int* a = static_cast<int*>(mem_ThreadObject(&tagA, make, destroy));
            int* b = static_cast<int*>(mem_ThreadObject(&tagB, make, destroy));
            wrong += a == b || mem_ThreadObject(&tagA, make, destroy) != a || *a != 0;
            *a = 1;  // no other thread sees it
        });
    }
    for (std::thread& t : threads)
        t.join();
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_EQ(made.load(), 8);
    EXPECT_EQ(destroyed.load(), 8);
}

// A miss answers a default value of the calling thread's own: what one thread writes into it (a
// caller's mistake) never shows in another thread's misses, and the value, list storage
// included, goes when its thread ends (the address sanitizer's leak check sees to that). The
// threads first miss freely (the thread sanitizer run sees that they share nothing), then take
// turns: each writes its mark, lets the other miss and write, and finds its own mark again.
TEST(PerThreadMemory, MissesOnTwoThreadsDoNotShareTheirFallback)
{
    std::atomic<int> wrong{0};
    std::atomic<int> turn{0};
    auto worker = [&wrong, &turn](int me) {
        const int mark = 7 + me;
        cow_Map<int, int> numbers;
        cow_Map<int, cow_1DArrayList<int>> lists;
        numbers.Insert(1, 1);
        for (int i = 0; i < 2000; ++i) {
            numbers.Get(99) = mark;
            wrong += numbers.ConstGet(98) != 0;
            lists.Get(5).Append(mark);
        }
        for (int round = 0; round < 50; ++round) {
            while (turn.load() % 2 != me)
                std::this_thread::yield();
            int& fallback = numbers.Get(99);
            cow_1DArrayList<int>& list = lists.Get(5);
            wrong += fallback != 0 || list.Count() != 0;
            fallback = mark;
            list.Append(mark);
            turn.fetch_add(1);  // the other thread misses and writes now
            while (turn.load() < 2 * round + 2)
                std::this_thread::yield();
            wrong += fallback != mark || list.Count() != 1 || list[0] != mark;
        }
        wrong += numbers.Count() != 1 || lists.Count() != 0;
    };
    std::thread a(worker, 0);
    std::thread b(worker, 1);
    a.join();
    b.join();
    EXPECT_EQ(wrong.load(), 0);
}

// Lists of lists grown past their blocks read default lists, which carry a count: threads reading
// lists of their own copy the default freely (the thread sanitizer run sees any shared count),
// and what each reads stays an empty list.
TEST(PerThreadMemory, DefaultElementsOfUnmadeBlocksAreThreadOwn)
{
    std::atomic<int> wrong{0};
    std::atomic<int> ready{0};
    auto reader = [&wrong, &ready] {
        cow_1DArrayList<cow_1DArrayList<int>> lists;
        lists.Grow(64);
        // Both threads read at the same time: allocations above may synchronise them through
        // the memory layer, which would hide a shared default from the sanitizer.
        ready.fetch_add(1);
        while (ready.load() < 2)
            std::this_thread::yield();
        for (int round = 0; round < 2000; ++round) {
            const cow_1DArrayList<int> copy = lists[round % 64];
            int n = 0;
            const cow_1DArrayList<int>* run = lists.Storage().ConstRun(round % 64, n);
            wrong += copy.Count() != 0 || n != 1 || run->Count() != 0;
        }
    };
    std::thread a(reader);
    std::thread b(reader);
    a.join();
    b.join();
    EXPECT_EQ(wrong.load(), 0);
}

}  // namespace

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "thr/thr_GlobalSingleton.h"
#include "thr/thr_ThreadSingleton.h"

namespace {

std::atomic<int> g_made{0};
std::atomic<int> g_destroyed{0};

struct Shared {
    Shared()
    {
        g_made.fetch_add(1);
        std::this_thread::yield();  // widen the window for a second creator
    }
    ~Shared() { g_destroyed.fetch_add(1); }
    int value = 0;
};

std::vector<int> g_destroyOrder;

template <int N>
struct PerThread {
    ~PerThread() { g_destroyOrder.push_back(N); }
    int value = N;
};

}  // namespace

TEST(thr_GlobalSingleton, OneInstanceForRacingThreadsAndANewOneAfterFinalize)
{
    g_made = 0;
    g_destroyed = 0;
    std::vector<Shared*> seen(8);
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t)
        threads.emplace_back([&, t] { seen[t] = &thr_GlobalSingleton<Shared>::Instance(); });
    for (std::thread& t : threads)
        t.join();
    EXPECT_EQ(g_made.load(), 1);
    for (Shared* s : seen)
        EXPECT_EQ(s, seen[0]);
    EXPECT_EQ(thr_GlobalSingletonBase<Shared>::Existing(), seen[0]);

    thr_GlobalSingletonBase<Shared>::Finalize();
    EXPECT_EQ(g_destroyed.load(), 1);
    EXPECT_EQ(thr_GlobalSingletonBase<Shared>::Existing(), nullptr);
    thr_GlobalSingletonBase<Shared>::Finalize();  // harmless when absent
    thr_GlobalSingleton<Shared>::Instance().value = 5;
    EXPECT_EQ(g_made.load(), 2);
    thr_GlobalSingletonBase<Shared>::Finalize();
}

TEST(thr_ThreadSingleton, EachThreadHasItsOwnInstanceDestroyedAtThreadExit)
{
    g_destroyOrder.clear();
    PerThread<1>* mine = &thr_ThreadSingleton<PerThread<1>>::Instance();
    EXPECT_EQ(&thr_ThreadSingleton<PerThread<1>>::Instance(), mine);
    const int key = thr_ThreadSingleton<PerThread<1>>::Key();
    EXPECT_EQ(thr_ThrSingletonRegistry::ThreadsHolding(key), 1);

    PerThread<1>* theirs = nullptr;
    std::thread([&] {
        EXPECT_EQ(thr_ThreadSingleton<PerThread<1>>::Existing(), nullptr);
        theirs = &thr_ThreadSingleton<PerThread<1>>::Instance();
        EXPECT_EQ(thr_ThrSingletonRegistry::ThreadsHolding(key), 2);
    }).join();
    EXPECT_NE(theirs, mine);
    ASSERT_EQ(g_destroyOrder.size(), 1u);  // the other thread's, at its exit
    EXPECT_EQ(thr_ThrSingletonRegistry::ThreadsHolding(key), 1);

    thr_ThreadSingleton<PerThread<1>>::Release();
    EXPECT_EQ(thr_ThreadSingleton<PerThread<1>>::Existing(), nullptr);
    EXPECT_EQ(thr_ThrSingletonRegistry::ThreadsHolding(key), 0);
}

TEST(thr_ThreadSingleton, FinalizeThreadDestroysByLevel)
{
    std::thread([] {
        g_destroyOrder.clear();
        thr_ThreadSingleton<PerThread<2>>::Instance();
        thr_ThreadSingleton<PerThread<3>>::Instance();
        thr_ThreadSingleton<PerThread<4>>::Instance();
        thr_ThrSingletonRegistry::SetDestructLevel(thr_ThreadSingleton<PerThread<2>>::Key(), -1);
        thr_ThrSingletonRegistry::SetDestructLevel(thr_ThreadSingleton<PerThread<3>>::Key(), 5);
        thr_ThrSingletonRegistry::FinalizeThread(-1);
        EXPECT_EQ(g_destroyOrder, (std::vector<int>{2, 4, 3}));
        EXPECT_EQ(thr_ThreadSingleton<PerThread<3>>::Existing(), nullptr);
    }).join();
    EXPECT_EQ(g_destroyOrder.size(), 3u);  // nothing left for the thread's exit
}

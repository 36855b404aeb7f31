#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "thr/thr_AtomicType.h"
#include "thr/thr_Barrier.h"
#include "thr/thr_CondVar.h"
#include "thr/thr_LockPool.h"
#include "thr/thr_Mutex.h"

TEST(thr_Mutex, LockIsReentrantButTryLockNeverReenters)
{
    thr_Mutex m(0);
    m.Lock();
    m.Lock();
    EXPECT_TRUE(m.IsHeld());
    EXPECT_EQ(m.TryLock(), 0);  // held by the caller itself

    int otherGot = -1;
    std::thread([&] { otherGot = m.TryLock(); }).join();
    EXPECT_EQ(otherGot, 0);

    m.Unlock();
    m.Unlock();
    std::thread([&] {
        otherGot = m.TryLock();
        if (otherGot)
            m.Unlock();
    }).join();
    EXPECT_EQ(otherGot, 1);
}

TEST(thr_Mutex, ExcludesOtherThreads)
{
    thr_Mutex m(0);
    long counter = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 20000; ++i) {
                thr_MutexGuard guard(m);
                counter = counter + 1;
            }
        });
    for (std::thread& t : threads)
        t.join();
    EXPECT_EQ(counter, 80000);
    EXPECT_FALSE(m.IsHeld());
}

TEST(thr_CondVar, ManualResetSignalReleasesEveryWaiterUntilReset)
{
    thr_CondVar signal;
    EXPECT_FALSE(signal.WaitForSignalMilliseconds(20));

    std::atomic<int> released{0};
    std::vector<std::thread> waiters;
    for (int t = 0; t < 3; ++t)
        waiters.emplace_back([&] {
            signal.WaitForSignal(0);  // without limit
            released.fetch_add(1);
        });
    signal.Signal();
    for (std::thread& t : waiters)
        t.join();
    EXPECT_EQ(released.load(), 3);
    EXPECT_TRUE(signal.WaitForSignalMilliseconds(0));  // still set

    signal.ResetSignal();
    EXPECT_FALSE(signal.WaitForSignalMilliseconds(10));
    signal.WaitForSignal(1);  // gives up after a second rather than hanging
}

TEST(thr_Barrier, NoThreadEntersTheNextCycleBeforeAllLeftThePrevious)
{
    const int kThreads = 3;
    const int kCycles = 2000;
    thr_Barrier barrier;
    std::vector<std::atomic<int>> arrived(kCycles);
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&] {
            for (int c = 0; c < kCycles; ++c) {
                arrived[c].fetch_add(1);
                barrier.BarrierSync(kThreads);
                if (arrived[c].load() != kThreads)  // someone left before everyone had come
                    failures.fetch_add(1);
            }
        });
    for (std::thread& t : threads)
        t.join();
    EXPECT_EQ(failures.load(), 0);

    barrier.BarrierSync(1);  // a barrier of one never waits
}

TEST(thr_LockPool, HandsOutDistinctLocksAndGrowsByTen)
{
    thr_LockPool::Finalize();
    thr_LockPool& pool = thr_LockPool::Instance();
    EXPECT_EQ(pool.Capacity(), 10);
    std::vector<thr_PoolLock*> locks;
    for (int i = 0; i < 11; ++i)
        locks.push_back(pool.GetLock());
    EXPECT_EQ(pool.Capacity(), 20);
    EXPECT_EQ(pool.HandedOut(), 11);
    for (int i = 0; i < 11; ++i)
        EXPECT_EQ(locks[i]->Number(), i);  // so eleven distinct locks
    locks[3]->Lock();
    locks[3]->Unlock();
    thr_LockPool::Finalize();
}

TEST(thr_AtomicType, CopyHasItsOwnUnheldMutex)
{
    thr_AtomicType<double> a(2.5);
    a.Mutex().Lock();
    thr_AtomicType<double> b(a);
    EXPECT_EQ(static_cast<double>(b), 2.5);
    int got = 0;
    std::thread([&] {
        got = b.Mutex().TryLock();
        if (got)
            b.Mutex().Unlock();
    }).join();
    EXPECT_EQ(got, 1);
    a.Mutex().Unlock();
}

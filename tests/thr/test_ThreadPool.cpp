#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <stdexcept>
#include <thread>

#include "thr/thr_CondVar.h"
#include "thr/thr_ThreadPool.h"

namespace {

class FunctionTask : public thr_ThreadTask {
public:
    FunctionTask(std::function<void(int)> f, std::atomic<int>* deleted = nullptr) : m_f(std::move(f)), m_deleted(deleted) {}
    ~FunctionTask() override
    {
        if (m_deleted)
            m_deleted->fetch_add(1);
    }
    void Run(int worker) override { m_f(worker); }

private:
    std::function<void(int)> m_f;
    std::atomic<int>* m_deleted;
};

// Waits (generously) for a condition that other threads make true; false if it never comes.
bool Eventually(const std::function<bool()>& condition)
{
    for (int i = 0; i < 20000; ++i) {
        if (condition())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return condition();
}

class ThreadPoolTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        thr_GlobalSingletonBase<thr_ThreadPool>::Finalize();
        pool = &thr_ThreadPool::Instance();
    }
    void TearDown() override { thr_GlobalSingletonBase<thr_ThreadPool>::Finalize(); }

    thr_ThreadPool* pool = nullptr;
};

}  // namespace

TEST(thr_ThreadPoolExit, ExitThreadOnTheMainThreadEndsTheProcess)
{
    EXPECT_EXIT(thr_ThreadPool::ExitThread(-1, 7), ::testing::ExitedWithCode(7), "");
}

TEST_F(ThreadPoolTest, RunsATaskWithTheWorkerNumberAndDeletesIt)
{
    FunctionTask unplaced([](int) {});
    EXPECT_FALSE(pool->RunTask(&unplaced, false, 0));  // no workers yet
    ASSERT_EQ(pool->AddThreads(2), 2);
    EXPECT_EQ(pool->Count(), 2);
    // The workers have waited past their polling second on their signals; a task still starts.
    std::this_thread::sleep_for(std::chrono::milliseconds(1200));

    std::atomic<int> deleted{0};
    std::atomic<int> ranOn{-1};
    ASSERT_TRUE(pool->RunTask(new FunctionTask([&](int w) { ranOn = w; }, &deleted)));
    EXPECT_TRUE(Eventually([&] { return deleted.load() == 1; }));
    EXPECT_EQ(ranOn.load(), 0);  // the first idle worker
    EXPECT_TRUE(Eventually([&] { return pool->State(0) == thr_ThreadPool::kIdle; }));
}

TEST_F(ThreadPoolTest, BusyWorkersRefuseALimitedPlacementAndTheLastWorkerTakesTheRest)
{
    ASSERT_EQ(pool->AddThreads(2), 2);
    thr_CondVar gate;
    std::atomic<int> started{0};
    std::atomic<int> deleted{0};  // the gate must outlive the tasks that wait on it
    std::atomic<int> workerOf[2] = {{-1}, {-1}};
    for (int t = 0; t < 2; ++t)
        ASSERT_TRUE(pool->RunTask(new FunctionTask(
            [&, t](int w) {
                workerOf[t] = w;
                started.fetch_add(1);
                gate.WaitForSignal(0);
            },
            &deleted)));
    ASSERT_TRUE(Eventually([&] { return started.load() == 2; }));
    EXPECT_EQ(workerOf[0].load(), 0);
    EXPECT_EQ(workerOf[1].load(), 1);

    FunctionTask refused([](int) {});
    EXPECT_FALSE(pool->RunTask(&refused, false, 1));
    EXPECT_FALSE(pool->RunTask(&refused, false, 5));

    std::atomic<bool> ran{false};
    std::thread opener([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        gate.Signal();
    });
    EXPECT_TRUE(pool->RunTask(new FunctionTask([&](int) { ran = true; }), false, 0));  // waits for a free worker
    opener.join();
    EXPECT_TRUE(Eventually([&] { return ran.load(); }));
    EXPECT_TRUE(Eventually([&] { return deleted.load() == 2; }));
}

TEST_F(ThreadPoolTest, TearDownDoesNotWaitForAKeepGoingTask)
{
    ASSERT_EQ(pool->AddThreads(2), 2);
    static thr_CondVar gate;  // outlives the pool
    static std::atomic<bool> started{false};
    static std::atomic<bool> finished{false};
    gate.ResetSignal();
    started = false;
    finished = false;
    auto keepGoing = [](int) {
        started = true;
        gate.WaitForSignal(0);
        finished = true;
    };
    ASSERT_TRUE(pool->RunTask(new FunctionTask(keepGoing), true));
    ASSERT_TRUE(Eventually([] { return started.load(); }));
    thr_GlobalSingletonBase<thr_ThreadPool>::Finalize();  // returns with the task still running
    EXPECT_FALSE(finished.load());
    gate.Signal();
    EXPECT_TRUE(Eventually([] { return finished.load(); }));
}

TEST_F(ThreadPoolTest, WorkersSpinningAtABarrierGiveUpOnTheErrorCondition)
{
    ASSERT_EQ(pool->AddThreads(2), 2);
    for (int t = 0; t < 2; ++t)
        ASSERT_TRUE(pool->RunTask(new FunctionTask([this](int) { pool->Barrier().BarrierSync(3); })));
    ASSERT_TRUE(Eventually([&] { return pool->State(0) == thr_ThreadPool::kTaskPlaced && pool->State(1) == thr_ThreadPool::kTaskPlaced; }));
    pool->SetErrorCondition(true);
    EXPECT_TRUE(Eventually([&] { return pool->State(0) == thr_ThreadPool::kExited && pool->State(1) == thr_ThreadPool::kExited; }));
}

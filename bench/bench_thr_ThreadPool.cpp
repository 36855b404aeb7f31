// The thread pool: time from RunTask to the task starting on an idle pool (the workers polling,
// and the workers blocked on their signal after a second of idleness), against the 10 ms round a
// plain sleep would give; and the throughput of 10^5 small tasks on two workers against running
// the same tasks on the calling thread.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

#include "thr/thr_ThreadPool.h"
#include "zul_BenchMain.h"

namespace {

using Clock = std::chrono::steady_clock;

class StampTask : public thr_ThreadTask {
public:
    explicit StampTask(std::atomic<int64_t>& started) : m_started(started) {}
    void Run(int) override { m_started.store(Clock::now().time_since_epoch().count(), std::memory_order_release); }

private:
    std::atomic<int64_t>& m_started;
};

thr_ThreadPool& PoolWithTwoWorkers()
{
    thr_ThreadPool& pool = thr_ThreadPool::Instance();
    if (pool.Count() < 2)
        pool.AddThreads(2 - pool.Count());
    return pool;
}

// Hands the task to the pool, which with tries = 0 waits until a worker takes it; a task not
// placed would still be ours.
void Place(thr_ThreadPool& pool, thr_ThreadTask* task)
{
    if (!pool.RunTask(task)) {
        delete task;
        std::fprintf(stderr, "bench_thr_ThreadPool: a task was not placed\n");
        std::exit(1);
    }
}

// Median start latency in microseconds over `rounds` tasks, idling `idle` before each.
double MedianStartMicroseconds(int rounds, std::chrono::milliseconds idle)
{
    thr_ThreadPool& pool = PoolWithTwoWorkers();
    std::vector<double> latencies;
    for (int i = 0; i < rounds; ++i) {
        std::this_thread::sleep_for(idle);
        std::atomic<int64_t> started{0};
        const int64_t placed = Clock::now().time_since_epoch().count();
        Place(pool, new StampTask(started));
        while (started.load(std::memory_order_acquire) == 0)
            std::this_thread::yield();
        latencies.push_back(std::chrono::duration<double, std::micro>(Clock::duration(started.load() - placed)).count());
    }
    std::nth_element(latencies.begin(), latencies.begin() + latencies.size() / 2, latencies.end());
    return latencies[latencies.size() / 2];
}

void thr_StartLatencyPolling(benchmark::State& state)
{
    double median = 0;
    for (auto _ : state)
        median = MedianStartMicroseconds(200, std::chrono::milliseconds(2));
    state.counters["median_us"] = median;
    state.counters["vs_10ms_sleep"] = median / 10000.0;
}
BENCHMARK(thr_StartLatencyPolling)->Iterations(1)->Unit(benchmark::kMillisecond);

void thr_StartLatencyBlocked(benchmark::State& state)
{
    double median = 0;
    for (auto _ : state)
        median = MedianStartMicroseconds(5, std::chrono::milliseconds(1100));
    state.counters["median_us"] = median;
    state.counters["vs_10ms_sleep"] = median / 10000.0;
}
BENCHMARK(thr_StartLatencyBlocked)->Iterations(1)->Unit(benchmark::kMillisecond);

const int kTasks = 100000;

class SmallTask : public thr_ThreadTask {
public:
    explicit SmallTask(std::atomic<int>& done) : m_done(done) {}
    void Run(int) override { Work(); }
    ~SmallTask() override { m_done.fetch_add(1, std::memory_order_release); }

    static void Work()
    {
        volatile unsigned x = 1;
        for (int i = 0; i < 200; ++i)
            x = x * 1664525u + 1013904223u;
    }

private:
    std::atomic<int>& m_done;
};

void thr_SmallTasksOnTwoWorkers(benchmark::State& state)
{
    thr_ThreadPool& pool = PoolWithTwoWorkers();
    for (auto _ : state) {
        std::atomic<int> done{0};
        for (int i = 0; i < kTasks; ++i)
            Place(pool, new SmallTask(done));
        while (done.load(std::memory_order_acquire) < kTasks)
            std::this_thread::yield();
    }
    state.SetItemsProcessed(state.iterations() * kTasks);
}
BENCHMARK(thr_SmallTasksOnTwoWorkers)->Unit(benchmark::kMillisecond);

void anchor_SmallTasksInline(benchmark::State& state)
{
    for (auto _ : state) {
        std::atomic<int> done{0};
        for (int i = 0; i < kTasks; ++i) {
            SmallTask* t = new SmallTask(done);
            t->Run(0);
            delete t;
        }
    }
    state.SetItemsProcessed(state.iterations() * kTasks);
}
BENCHMARK(anchor_SmallTasksInline)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv)
{
    return zul_BenchMain(argc, argv);
}

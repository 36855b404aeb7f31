// The thread pool (thr_ThreadPool): four workers sum the squares of 1..1000000 in eight pieces.
// Each task writes its own slot and counts itself done under a mutex; the last one sets a
// signal that the main thread waits for. The worker deletes each task after running it.
//
// Output:
// | workers: 4
// | pieces done: 8
// | sum of squares 1..1000000 = 333333833333500000
// | the same as n(n+1)(2n+1)/6: yes
#include <cstdint>
#include <cstdio>

#include "ZULFNDUTI_BasicUtils.h"

namespace {

const int kPieces = 8;
const int64_t kLast = 1000000;

// What the tasks share with the main thread.
struct Work {
    uint64_t partial[kPieces] = {};
    int done = 0;
    thr_Mutex mutex;
    thr_CondVar allDone;  // stays set once signalled
};

class SquaresTask : public thr_ThreadTask {
public:
    SquaresTask(Work& work, int piece) : m_work(work), m_piece(piece) {}

    void Run(int /*workerNumber*/) override
    {
        const int64_t step = kLast / kPieces;
        const int64_t from = m_piece * step + 1;
        const int64_t to = m_piece == kPieces - 1 ? kLast : from + step - 1;
        uint64_t sum = 0;
        for (int64_t i = from; i <= to; ++i)
            sum += static_cast<uint64_t>(i * i);
        m_work.partial[m_piece] = sum;  // one slot per task: no lock needed

        thr_MutexGuard guard(m_work.mutex);
        if (++m_work.done == kPieces)
            m_work.allDone.Signal();
    }

private:
    Work& m_work;
    int m_piece;
};

}  // namespace

int main()
{
    int count = 0;
    UTI_BasicUtils_initialize(count);

    thr_ThreadPool& pool = thr_ThreadPool::Instance();
    pool.AddThreads(4);
    std::printf("workers: %d\n", pool.Count());

    {
        Work work;
        for (int piece = 0; piece < kPieces; ++piece) {
            // Waits for an idle worker when all are busy. A task not placed (possible only with a
            // limited number of tries) is still ours: run it here.
            SquaresTask* task = new SquaresTask(work, piece);
            if (!pool.RunTask(task)) {
                task->Run(-1);
                delete task;
            }
        }
        work.allDone.WaitForSignal(0);                    // 0: without a time limit

        uint64_t total = 0;
        {
            thr_MutexGuard guard(work.mutex);
            std::printf("pieces done: %d\n", work.done);
            for (uint64_t part : work.partial)
                total += part;
        }
        const uint64_t n = static_cast<uint64_t>(kLast);
        std::printf("sum of squares 1..%llu = %llu\n", static_cast<unsigned long long>(n),
                    static_cast<unsigned long long>(total));
        std::printf("the same as n(n+1)(2n+1)/6: %s\n", total == n * (n + 1) * (2 * n + 1) / 6 ? "yes" : "no");
    }  // the mutex and signal go before the library shuts down

    UTI_BasicUtils_finalize(count);  // stops the workers
    return 0;
}

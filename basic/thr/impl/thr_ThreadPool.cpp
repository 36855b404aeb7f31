#include "thr/thr_ThreadPool.h"

#include <atomic>
#include <cstdlib>
#include <exception>
#include <new>
#include <thread>

#include "aio/aio_ostream.h"
#include "nex/nex_Exception.h"
#include "sys/impl/sys_Os.h"
#include "thr/impl/thr_Os.h"
#include "thr/thr_ThreadSingleton.h"

namespace {

const int kIdleRoundsBeforeBlocking = 100;
const long kIdleRoundMilliseconds = 10;
const long kTearDownWaitMilliseconds = 100;

std::atomic<unsigned long> g_mainThread{0};

// Thrown by ExitThread on a worker and caught at the bottom of the worker's stack, so that the
// worker's frames unwind normally.
struct WorkerExit {
    int code;
};

// Set on the pool's worker threads (their per-thread singletons may already be gone when they
// exit).
thread_local bool t_isWorker = false;

}  // namespace

struct thr_ThreadPool::Tables {
    struct Cell {
        int number;
        Tables* tables;
    };

    std::atomic<int> count{0};
    thr_Mutex poolMutex{0};
    bool errorCondition = false;
    std::atomic<bool> running{true};
    std::atomic<bool> closing{false};
    // The pool and every started worker hold one reference; the last to let go frees the tables.
    std::atomic<int> references{1};
    int started = 0;
    std::atomic<int> state[kMaxThreads];
    thr_Mutex slotMutex[kMaxThreads];
    thr_Mutex handOffMutex[kMaxThreads];
    unsigned char handOff[kMaxThreads];
    thr_ThreadTask* task[kMaxThreads];
    Cell* cell[kMaxThreads];
    thr_CondVar signal[kMaxThreads];
    unsigned char keepGoing[kMaxThreads];
    thr_Barrier barrier;
    thr_os::Thread thread[kMaxThreads];

    Tables()
    {
        for (int i = 0; i < kMaxThreads; ++i) {
            state[i].store(kIdle, std::memory_order_relaxed);
            handOff[i] = 0;
            task[i] = nullptr;
            cell[i] = nullptr;
            keepGoing[i] = 0;
            thread[i] = nullptr;
        }
    }

    static void* operator new(size_t size) { return mem_OperatorNewThrow(size); }
    static void operator delete(void* p) { mem_Free(p); }

    void SetState(int i, int s)
    {
        thr_MutexGuard guard(slotMutex[i]);
        state[i].store(s, std::memory_order_release);
    }

    void Release()
    {
        if (references.fetch_sub(1, std::memory_order_acq_rel) != 1)
            return;
        for (int i = 0; i < started; ++i)
            mem_Free(cell[i]);
        delete this;
    }

    void WorkerLoop(int i);
    void RunPlacedTask(int i);
    void ReportFailedTask(const char* report);
};

thr_ThreadTask::~thr_ThreadTask() = default;

thr_ThreadPool& thr_ThreadPool::Instance()
{
    return thr_GlobalSingleton<thr_ThreadPool>::Instance();
}

thr_ThreadPool* thr_ThreadPool::Existing()
{
    return thr_GlobalSingletonBase<thr_ThreadPool>::Existing();
}

void thr_ThreadPool::SetMainThread()
{
    g_mainThread.store(thr_os::CurrentThreadId(), std::memory_order_release);
}

thr_ThreadPool::thr_ThreadPool() : m_tables(new Tables) {}

thr_ThreadPool::~thr_ThreadPool()
{
    Tables& t = *m_tables;
    const int count = t.count.exchange(0, std::memory_order_acq_rel);
    t.closing.store(true, std::memory_order_release);
    const bool failed = ErrorCondition();
    for (int i = 0; i < count; ++i) {
        bool keepGoing;
        {
            thr_MutexGuard guard(t.slotMutex[i]);
            keepGoing = t.keepGoing[i] != 0;
        }
        if (failed || keepGoing) {
            t.signal[i].Signal();  // an idle worker sees the pool closing and leaves
            continue;
        }
        while (t.state[i].load(std::memory_order_acquire) == kTaskPlaced)
            sys_SleepMilliseconds(1);
        {
            thr_MutexGuard guard(t.slotMutex[i]);
            if (t.state[i].load(std::memory_order_acquire) == kIdle)
                t.state[i].store(kTerminate, std::memory_order_release);
        }
        t.signal[i].Signal();
        while (t.state[i].load(std::memory_order_acquire) != kExited)
            thr_os::ThreadWait(t.thread[i], kTearDownWaitMilliseconds);
        thr_os::ThreadWait(t.thread[i], -1);
    }
    for (int i = 0; i < count; ++i) {
        thr_os::ThreadClose(t.thread[i]);
        t.thread[i] = nullptr;
    }
    m_tables = nullptr;
    t.Release();
}

int thr_ThreadPool::Count() const
{
    return m_tables->count.load(std::memory_order_acquire);
}

int thr_ThreadPool::State(int worker) const
{
    NEX_ASSERT(worker >= 0 && worker < kMaxThreads);
    return m_tables->state[worker].load(std::memory_order_acquire);
}

bool thr_ThreadPool::Running() const
{
    return m_tables->running.load(std::memory_order_acquire);
}

thr_Barrier& thr_ThreadPool::Barrier()
{
    return m_tables->barrier;
}

int thr_ThreadPool::AddThreads(int n, e_threadType)
{
    Tables& t = *m_tables;
    thr_MutexGuard guard(t.poolMutex);
    const int old = t.count.load(std::memory_order_acquire);
    int started = 0;
    for (int k = old; k < old + n && k < kMaxThreads; ++k) {
        Tables::Cell* cell = static_cast<Tables::Cell*>(mem_OperatorNewThrow(sizeof(Tables::Cell)));
        cell->number = k;
        cell->tables = &t;
        t.state[k].store(kIdle, std::memory_order_release);
        t.references.fetch_add(1, std::memory_order_acq_rel);
        thr_os::Thread thread = thr_os::ThreadStart(&thr_ThreadPool::WorkerEntry, cell);
        if (!thread) {
            t.references.fetch_sub(1, std::memory_order_acq_rel);
            mem_Free(cell);
            break;
        }
        t.cell[k] = cell;
        t.started = k + 1;
        t.thread[k] = thread;
        t.count.store(k + 1, std::memory_order_release);
        ++started;
    }
    return started;
}

bool thr_ThreadPool::RunTask(thr_ThreadTask* task, bool keepGoing, int tries)
{
    Tables& t = *m_tables;
    for (int attempt = 0;; ++attempt) {
        if (tries >= 1 && attempt >= tries)
            return false;
        const int count = t.count.load(std::memory_order_acquire);
        if (count == 0)
            return false;  // no worker would ever take it
        if (!t.running.load(std::memory_order_acquire)) {
            sys_SleepMilliseconds(1);
            continue;
        }
        int candidate = count - 1;
        for (int i = 0; i < count - 1; ++i) {
            if (t.state[i].load(std::memory_order_acquire) == kIdle) {
                candidate = i;
                break;
            }
        }
        thr_Mutex& slot = t.slotMutex[candidate];
        slot.Lock();
        if (t.state[candidate].load(std::memory_order_acquire) != kIdle) {
            slot.Unlock();
            std::this_thread::yield();
            continue;
        }
        {
            thr_MutexGuard handOff(t.handOffMutex[candidate]);
            t.handOff[candidate] = 1;
        }
        t.task[candidate] = task;
        t.state[candidate].store(kTaskPlaced, std::memory_order_release);
        t.keepGoing[candidate] = keepGoing ? 1 : 0;
        t.signal[candidate].Signal();
        slot.Unlock();
        return true;
    }
}

void thr_ThreadPool::TerminateThread(int i)
{
    if (i != -1) {
        thr_ThreadPool* pool = Existing();
        if (pool && i >= 0 && i < kMaxThreads)
            pool->m_tables->SetState(i, kTerminate);
    }
    thr_ThrSingletonRegistry::FinalizeThread(i);
}

void thr_ThreadPool::ExitThread(int i, int code)
{
    thr_ThreadPool* pool = Existing();
    if (pool && i >= 0 && i < kMaxThreads)
        pool->m_tables->SetState(i, kExited);
    if (thr_os::CurrentThreadId() == g_mainThread.load(std::memory_order_acquire))
        std::exit(code);
    if (t_isWorker)
        throw WorkerExit{code};
    thr_os::ThreadExitCurrent(code);
}

void thr_ThreadPool::SetErrorCondition(bool failed)
{
    thr_MutexGuard guard(m_tables->poolMutex);
    m_tables->errorCondition = failed;
}

bool thr_ThreadPool::ErrorCondition() const
{
    thr_MutexGuard guard(m_tables->poolMutex);
    return m_tables->errorCondition;
}

void thr_ThreadPool::SuspendOrResume(bool suspend, int except)
{
    Tables& t = *m_tables;
    t.running.store(!suspend, std::memory_order_release);
    const int count = t.count.load(std::memory_order_acquire);
    for (int i = 0; i < count; ++i) {
        if (i == except || !t.thread[i])
            continue;
        if (suspend)
            thr_os::ThreadSuspend(t.thread[i]);
        else
            thr_os::ThreadResume(t.thread[i]);
    }
}

void thr_ThreadPool::SuspendThreads() { SuspendOrResume(true, -1); }
void thr_ThreadPool::SuspendAllOtherThreads(int i) { SuspendOrResume(true, i); }
void thr_ThreadPool::ResumeThreads() { SuspendOrResume(false, -1); }
void thr_ThreadPool::ResumeAllOtherThreads(int i) { SuspendOrResume(false, i); }

unsigned thr_ThreadPool::WorkerEntry(void* p)
{
    const Tables::Cell* cell = static_cast<const Tables::Cell*>(p);
    const int i = cell->number;
    Tables& t = *cell->tables;
    t_isWorker = true;
    struct LetGo {
        Tables& t;
        ~LetGo() { t.Release(); }
    } letGo{t};
    try {
        thr_ThreadSingleton<thr_ThreadId>::Instance().SetNumber(i + 1);
        t.WorkerLoop(i);
    } catch (const WorkerExit& exit) {
        return static_cast<unsigned>(exit.code);
    } catch (...) {
        // Only the per-thread identity can fail here (out of memory before the loop started).
        t.SetState(i, kExited);
        return 1;
    }
    thr_ThrSingletonRegistry::FinalizeThread(i);
    t.SetState(i, kExited);
    return 0;
}

void thr_ThreadPool::Tables::WorkerLoop(int i)
{
    int idleRounds = 0;
    for (;;) {
        const int s = state[i].load(std::memory_order_acquire);
        if (s == kIdle) {
            if (closing.load(std::memory_order_acquire))
                return;
            if (++idleRounds < kIdleRoundsBeforeBlocking) {
                signal[i].WaitForSignalMilliseconds(kIdleRoundMilliseconds);
            } else {
                idleRounds = 0;
                if (state[i].load(std::memory_order_acquire) == kIdle && !closing.load(std::memory_order_acquire))
                    signal[i].WaitForSignal(0);
            }
            signal[i].ResetSignal();
        } else if (s == kTaskPlaced) {
            idleRounds = 0;
            RunPlacedTask(i);
        } else {
            return;
        }
    }
}

void thr_ThreadPool::Tables::RunPlacedTask(int i)
{
    thr_ThreadTask* current;
    {
        thr_MutexGuard guard(slotMutex[i]);
        current = task[i];
        task[i] = nullptr;
    }
    {
        thr_MutexGuard guard(handOffMutex[i]);
        handOff[i] = 0;
    }
    struct Finish {
        Tables& t;
        int i;
        thr_ThreadTask* task;
        ~Finish()
        {
            delete task;
            thr_MutexGuard guard(t.slotMutex[i]);
            if (t.state[i].load(std::memory_order_acquire) == kTaskPlaced)
                t.state[i].store(kIdle, std::memory_order_release);
            t.keepGoing[i] = 0;
        }
    } finish{*this, i, current};
    try {
        current->Run(i);
    } catch (const WorkerExit&) {
        throw;
    } catch (const nex_Exception& e) {
        ReportFailedTask(e.UserReport().c_str());
    } catch (const std::exception& e) {
        ReportFailedTask(e.what());
    } catch (...) {
        ReportFailedTask("unknown exception");
    }
}

void thr_ThreadPool::Tables::ReportFailedTask(const char* report)
{
    {
        thr_MutexGuard guard(poolMutex);
        errorCondition = true;
    }
    aio_cerr().print("thr_ThreadPool: a task failed: ").print(report).print("\n");
}

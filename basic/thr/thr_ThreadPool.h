/// @class thr_ThreadPool
/// thr_ThreadPool: the process's pool of worker threads (a global singleton, torn down when the
/// thr module finalizes).
///
/// Each worker has a fixed slot (at most kMaxThreads). RunTask hands a task to an idle worker;
/// the worker runs it with its number, deletes it, and goes idle again. Idle workers poll for
/// about a second in 10 ms rounds, waking at once when a task is placed, and then block on their
/// signal until the next task.
///
/// A task that throws: the worker catches the exception, writes its report to aio_cerr, sets the
/// pool's error condition (so that threads spinning at a barrier give up) and goes idle; the task
/// is deleted as usual and the pool keeps running. ErrorCondition() tells callers that a task
/// failed; SetErrorCondition(false) clears it.
///
/// Tear-down waits for every worker except those whose current task was placed with the
/// keep-going flag, and, when the error condition is set, for none. The workers' tables are
/// shared by the pool and its workers and freed by the last of them to go, so a worker still
/// running never touches freed memory; a worker not waited for leaves as soon as it is idle.
///
/// Suspend and resume: on Windows the workers' threads are suspended and resumed. POSIX has no
/// way to stop another thread, so there the suspend operations only clear the running flag:
/// RunTask then places no task until the pool is resumed, and workers finish what they run.
///
/// Thread rule. The first Instance() may come from any thread (the singleton's mutex); the
/// tear-down (thr_finalize) must not overlap any other call. In between:
/// - RunTask may be called from several threads at once: each worker takes one task at a time,
///   placed under its slot's mutex. With tries < 1 it waits while the pool is suspended.
/// - AddThreads calls follow one another (the pool's mutex) and may overlap RunTask and the
///   suspend operations: a worker is seen by them, and by Count, only once it has started. A
///   suspend that overlaps AddThreads does not suspend the workers it starts (Windows), and a
///   RunTask that overlaps a suspend may still place its one task.
/// - Suspend and resume calls are not ordered against each other: make them from one thread. On
///   Windows a suspended worker keeps every lock it holds (the memory layer's, the C runtime's)
///   until it is resumed.
/// - Count, State, Running, ErrorCondition and SetErrorCondition from any thread (atomic reads,
///   or the pool's mutex).
/// - TerminateThread and ExitThread act on the calling thread: call them on the worker they name
///   (ExitThread on the thread that brought the library up ends the process).
///
/// State(worker) checks its argument (nex_AssertException outside 0 .. kMaxThreads-1).
#ifndef THR_THREADPOOL_H
#define THR_THREADPOOL_H

#include "thr/thr_Barrier.h"
#include "thr/thr_CondVar.h"
#include "thr/thr_GlobalSingleton.h"
#include "thr/thr_Mutex.h"
#include "zul_BasicExport.h"

/// A unit of work for the pool. The worker deletes it right after Run returns.
class ZUL_BASIC_API thr_ThreadTask : public mem_AllocationOperators {
public:
    virtual ~thr_ThreadTask();
    virtual void Run(int workerNumber) = 0;
};

class ZUL_BASIC_API thr_ThreadPool : public mem_AllocationOperators {
public:
    /// The most workers the pool holds.
    enum { kMaxThreads = 1024 };
    /// Worker states.
    enum { kIdle = 0, kTaskPlaced = 1, kTerminate = 2, kExited = 3 };
    /// What kind of work the added threads are meant for; the pool treats all kinds alike.
    enum e_threadType { e_compute = 0, e_io = 1 };

    /// The process's pool, created on first use.
    static thr_ThreadPool& Instance();
    /// The pool if it exists; never creates.
    static thr_ThreadPool* Existing();

    /// Starts n more workers (the total is capped at kMaxThreads). Returns the number started.
    int AddThreads(int n, e_threadType type = e_compute);
    int Count() const;
    int State(int worker) const;

    /// Hands the task to an idle worker; true when placed. tries < 1: keep trying until placed.
    /// The pool owns the task once it is placed; a task not placed still belongs to the caller.
    [[nodiscard]] bool RunTask(thr_ThreadTask* task, bool keepGoing = false, int tries = 0);

    /// Marks worker i for termination (unless i is -1) and destroys the calling thread's
    /// per-thread singletons.
    static void TerminateThread(int i);
    /// Marks worker i exited and ends the calling thread with `code` (the process, when called
    /// on the thread that brought the library up).
    [[noreturn]] static void ExitThread(int i, int code);

    void SetErrorCondition(bool failed);
    bool ErrorCondition() const;

    void SuspendThreads();
    void SuspendAllOtherThreads(int i);
    void ResumeThreads();
    void ResumeAllOtherThreads(int i);
    bool Running() const;

    thr_Barrier& Barrier();

    /// Records the calling thread as the one that owns the process (done by thr_initialize).
    static void SetMainThread();

private:
    friend class thr_GlobalSingleton<thr_ThreadPool>;
    friend class thr_GlobalSingletonBase<thr_ThreadPool>;
    struct Tables;

    thr_ThreadPool();
    ~thr_ThreadPool();
    thr_ThreadPool(const thr_ThreadPool&) = delete;
    thr_ThreadPool& operator=(const thr_ThreadPool&) = delete;

    static unsigned WorkerEntry(void* cell);
    void SuspendOrResume(bool suspend, int except);

    /// Everything the workers touch lives in the tables, which outlive the pool when a worker
    /// was not waited for.
    Tables* m_tables;
};

#endif

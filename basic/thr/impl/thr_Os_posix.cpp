#include "thr/impl/thr_Os.h"

#include <errno.h>
#include <pthread.h>
#include <signal.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <new>

#include "mem/mem_Memory.h"

namespace thr_os {

static_assert(sizeof(pthread_mutex_t) <= kMutexBytes, "thr_Mutex storage too small");

void MutexInit(void* storage)
{
    pthread_mutexattr_t attr;
    pthread_mutexattr_init(&attr);
    pthread_mutexattr_settype(&attr, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(static_cast<pthread_mutex_t*>(storage), &attr);
    pthread_mutexattr_destroy(&attr);
}

void MutexDestroy(void* storage) { pthread_mutex_destroy(static_cast<pthread_mutex_t*>(storage)); }
void MutexLock(void* storage) { pthread_mutex_lock(static_cast<pthread_mutex_t*>(storage)); }
bool MutexTryLock(void* storage) { return pthread_mutex_trylock(static_cast<pthread_mutex_t*>(storage)) == 0; }
void MutexUnlock(void* storage) { pthread_mutex_unlock(static_cast<pthread_mutex_t*>(storage)); }

namespace {

struct Event {
    pthread_mutex_t mutex;
    pthread_cond_t cond;
    bool set;
};

timespec DeadlineAfter(clockid_t clock, long milliseconds)
{
    timespec t;
    clock_gettime(clock, &t);
    t.tv_sec += milliseconds / 1000;
    t.tv_nsec += (milliseconds % 1000) * 1000000L;
    if (t.tv_nsec >= 1000000000L) {
        t.tv_sec += 1;
        t.tv_nsec -= 1000000000L;
    }
    return t;
}

}  // namespace

void* EventCreate()
{
    Event* e = static_cast<Event*>(mem_OperatorNewThrow(sizeof(Event)));
    pthread_mutex_init(&e->mutex, nullptr);
    pthread_condattr_t attr;
    pthread_condattr_init(&attr);
    pthread_condattr_setclock(&attr, CLOCK_MONOTONIC);
    pthread_cond_init(&e->cond, &attr);
    pthread_condattr_destroy(&attr);
    e->set = false;
    return e;
}

void EventDestroy(void* event)
{
    Event* e = static_cast<Event*>(event);
    pthread_cond_destroy(&e->cond);
    pthread_mutex_destroy(&e->mutex);
    mem_Free(e);
}

void EventSet(void* event)
{
    Event* e = static_cast<Event*>(event);
    pthread_mutex_lock(&e->mutex);
    e->set = true;
    pthread_cond_broadcast(&e->cond);
    pthread_mutex_unlock(&e->mutex);
}

void EventReset(void* event)
{
    Event* e = static_cast<Event*>(event);
    pthread_mutex_lock(&e->mutex);
    e->set = false;
    pthread_mutex_unlock(&e->mutex);
}

bool EventWait(void* event, long milliseconds)
{
    Event* e = static_cast<Event*>(event);
    pthread_mutex_lock(&e->mutex);
    if (milliseconds < 0) {
        while (!e->set)
            pthread_cond_wait(&e->cond, &e->mutex);
    } else {
        const timespec deadline = DeadlineAfter(CLOCK_MONOTONIC, milliseconds);
        while (!e->set) {
            if (pthread_cond_timedwait(&e->cond, &e->mutex, &deadline) == ETIMEDOUT)
                break;
        }
    }
    const bool set = e->set;
    pthread_mutex_unlock(&e->mutex);
    return set;
}

namespace {

struct ThreadRecord {
    pthread_t id;
    ThreadEntry entry;
    void* argument;
    bool joined;
};

void* Trampoline(void* p)
{
    ThreadRecord* r = static_cast<ThreadRecord*>(p);
    return reinterpret_cast<void*>(static_cast<uintptr_t>(r->entry(r->argument)));
}

}  // namespace

Thread ThreadStart(ThreadEntry entry, void* argument)
{
    ThreadRecord* r = NewThreadRecord<ThreadRecord>(entry, argument);
    if (!r)
        return nullptr;
    r->joined = false;
    if (pthread_create(&r->id, nullptr, &Trampoline, r) != 0) {
        mem_Free(r);
        return nullptr;
    }
    return r;
}

bool ThreadWait(Thread thread, long milliseconds)
{
    ThreadRecord* r = static_cast<ThreadRecord*>(thread);
    if (r->joined)
        return true;
    if (milliseconds < 0) {
        r->joined = pthread_join(r->id, nullptr) == 0;
    } else {
        const timespec deadline = DeadlineAfter(CLOCK_REALTIME, milliseconds);  // the join clock
        r->joined = pthread_timedjoin_np(r->id, nullptr, &deadline) == 0;
    }
    return r->joined;
}

void ThreadClose(Thread thread)
{
    ThreadRecord* r = static_cast<ThreadRecord*>(thread);
    if (!r)
        return;
    if (!r->joined)
        pthread_detach(r->id);
    mem_Free(r);
}

void ThreadExitCurrent(int code)
{
    pthread_exit(reinterpret_cast<void*>(static_cast<intptr_t>(code)));
}

// POSIX threads cannot be suspended from outside; the pool's suspend operations stop handing out
// work instead (see thr_ThreadPool.h).
bool ThreadSuspend(Thread) { return false; }
bool ThreadResume(Thread) { return false; }

unsigned long CurrentThreadId()
{
    static std::atomic<unsigned long> next{1};
    thread_local unsigned long id = 0;
    if (id == 0)
        id = next.fetch_add(1);
    return id;
}

namespace {

void (*g_exitHook)(void*) = nullptr;
pthread_key_t g_blockKey;
pthread_once_t g_blockKeyOnce = PTHREAD_ONCE_INIT;

void RunExitHook(void* block)
{
    if (g_exitHook)
        g_exitHook(block);
}

void MakeBlockKey() { pthread_key_create(&g_blockKey, &RunExitHook); }

}  // namespace

void SetThreadBlockExitHook(void (*hook)(void*))
{
    pthread_once(&g_blockKeyOnce, &MakeBlockKey);
    g_exitHook = hook;
}

void* ThreadBlock()
{
    pthread_once(&g_blockKeyOnce, &MakeBlockKey);
    return pthread_getspecific(g_blockKey);
}

void SetThreadBlock(void* block)
{
    pthread_once(&g_blockKeyOnce, &MakeBlockKey);
    pthread_setspecific(g_blockKey, block);
}

}  // namespace thr_os

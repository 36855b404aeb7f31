/// @class thr_GlobalLock
/// thr_GlobalLock: the one process-wide lock, created by thr_initialize and destroyed by
/// thr_finalize. It guards the creation and release of per-thread singleton slots and the
/// creation of the global singletons' own mutexes. Lock order: never take it while a pool or
/// module lock is held.
///
/// Thread rule: Lock and Unlock from any thread (re-entrant, as thr_Mutex). Instance() and
/// Finalize() are not locked: thr_initialize makes the lock before other threads start and
/// thr_finalize ends it after they stop.
#ifndef THR_GLOBALLOCK_H
#define THR_GLOBALLOCK_H

#include "omi/omi_Singleton.h"
#include "thr/thr_Mutex.h"
#include "zul_BasicExport.h"

class ZUL_BASIC_API thr_GlobalLock : public omi_Singleton<thr_GlobalLock> {
public:
    thr_GlobalLock();
    ~thr_GlobalLock();

    /// The process's instance (made on first use when the thr module has not made it yet).
    static thr_GlobalLock& Instance();
    static void Finalize();

    void Lock() { m_mutex->Lock(); }
    void Unlock() { m_mutex->Unlock(); }

private:
    thr_Mutex* m_mutex;
};

/// Holds the global lock for the life of a scope.
class thr_GlobalLockGuard {
public:
    thr_GlobalLockGuard() : m_lock(thr_GlobalLock::Instance()) { m_lock.Lock(); }
    ~thr_GlobalLockGuard() { m_lock.Unlock(); }
    thr_GlobalLockGuard(const thr_GlobalLockGuard&) = delete;
    thr_GlobalLockGuard& operator=(const thr_GlobalLockGuard&) = delete;

private:
    thr_GlobalLock& m_lock;
};

#endif

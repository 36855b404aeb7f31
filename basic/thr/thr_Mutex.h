/// @class thr_Mutex
/// thr_Mutex: a lock that remembers whether it is held.
///
/// Lock() is re-entrant for the thread that holds the mutex (a critical section on Windows, a
/// recursive pthread mutex elsewhere); TryLock() never re-enters: it fails at once whenever the
/// mutex is held, by any thread, the caller included. Unlock() must be called once per Lock().
///
/// Thread rule: made for several threads: Lock and TryLock from any thread, Unlock on the thread
/// that holds the mutex. IsHeld is a relaxed read: a hint that orders nothing.
#ifndef THR_MUTEX_H
#define THR_MUTEX_H

#include <atomic>

#include "mem/mem_AllocationOperators.h"
#include "zul_BasicExport.h"

class ZUL_BASIC_API thr_Mutex : public mem_AllocationOperators {
public:
    /// Callers pass 0: the argument is stored as the held flag.
    explicit thr_Mutex(unsigned int held = 0);
    ~thr_Mutex();
    thr_Mutex(const thr_Mutex&) = delete;
    thr_Mutex& operator=(const thr_Mutex&) = delete;

    void Lock();
    void Unlock();
    /// 1 when the mutex was free and is now held by the caller, 0 otherwise.
    [[nodiscard]] int TryLock();

    bool IsHeld() const { return m_held.load(std::memory_order_relaxed) != 0; }

private:
    std::atomic<unsigned int> m_held;
    alignas(8) unsigned char m_lock[48];
};

/// Holds a mutex for the life of a scope.
class thr_MutexGuard {
public:
    explicit thr_MutexGuard(thr_Mutex& m) : m_mutex(m) { m_mutex.Lock(); }
    ~thr_MutexGuard() { m_mutex.Unlock(); }
    thr_MutexGuard(const thr_MutexGuard&) = delete;
    thr_MutexGuard& operator=(const thr_MutexGuard&) = delete;

private:
    thr_Mutex& m_mutex;
};

/// The points where a platform with a weaker memory order would fence. On x86-64 stores are
/// seen in program order, so both do nothing.
///@{
inline void thr_MemoryBarrier() {}
inline void thr_WriteMemoryBarrier() {}
///@}

#endif

/// @class thr_LockPool
/// thr_LockPool: the process's pool of reusable locks. GetLock() hands out a lock that no one else
/// was given; the pool grows by 10 when all are handed out. Locks are never given back.
/// GetLock raises the memory layer's out-of-memory exception when the pool cannot grow; the pool
/// is then unchanged.
///
/// Thread rule: GetLock may be called from several threads at once (it runs under the pool's
/// mutex), and every lock serves any thread (a re-entrant thr_Mutex). Instance() and Finalize()
/// are not locked: the thr module's start-up makes the pool before any thread can ask for it,
/// and its tear-down ends it after they stop. Capacity() and HandedOut() read without the mutex:
/// exact only while no GetLock runs.
#ifndef THR_LOCKPOOL_H
#define THR_LOCKPOOL_H

#include "omi/omi_Singleton.h"
#include "thr/thr_Mutex.h"
#include "zul_BasicExport.h"

/// A lock of the pool, known by its number.
class ZUL_BASIC_API thr_PoolLock : public mem_AllocationOperators {
public:
    explicit thr_PoolLock(int number);
    ~thr_PoolLock();
    thr_PoolLock(const thr_PoolLock&) = delete;
    thr_PoolLock& operator=(const thr_PoolLock&) = delete;

    int Number() const { return m_number; }
    void Lock() { m_mutex->Lock(); }
    void Unlock() { m_mutex->Unlock(); }

private:
    int m_number;
    thr_Mutex* m_mutex;
};

class ZUL_BASIC_API thr_LockPool : public omi_Singleton<thr_LockPool> {
public:
    /// The pool's first size and its growth step.
    enum { kInitialCapacity = 10, kGrowth = 10 };

    thr_LockPool();
    ~thr_LockPool();

    static thr_LockPool& Instance();
    static void Finalize();

    thr_PoolLock* GetLock();
    int Capacity() const { return m_capacity; }
    int HandedOut() const { return m_handedOut; }

private:
    void Grow();

    int m_capacity;
    int m_handedOut;
    thr_PoolLock** m_locks;
    unsigned char* m_inUse;
    int m_searchStart;
    thr_Mutex* m_mutex;
};

#endif

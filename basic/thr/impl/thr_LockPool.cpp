#include "thr/thr_LockPool.h"

#include <cstring>

thr_PoolLock::thr_PoolLock(int number) : m_number(number), m_mutex(new thr_Mutex(0)) {}

thr_PoolLock::~thr_PoolLock()
{
    delete m_mutex;
}

thr_LockPool::thr_LockPool()
    : m_capacity(0), m_handedOut(0), m_locks(nullptr), m_inUse(nullptr), m_searchStart(0), m_mutex(nullptr)
{
    m_mutex = new thr_Mutex(0);
    try {
        Grow();
    } catch (...) {
        delete m_mutex;
        throw;
    }
}

thr_LockPool::~thr_LockPool()
{
    for (int i = 0; i < m_capacity; ++i)
        delete m_locks[i];
    mem_Free(m_locks);
    mem_Free(m_inUse);
    delete m_mutex;
}

thr_LockPool& thr_LockPool::Instance()
{
    return omi_Singleton<thr_LockPool>::Instance();
}

void thr_LockPool::Finalize()
{
    omi_SingletonBase<thr_LockPool>::Finalize();
}

// All allocations precede the first change, so a failure leaves the pool as it was.
void thr_LockPool::Grow()
{
    const int capacity = m_capacity + kGrowth;
    thr_PoolLock** locks = static_cast<thr_PoolLock**>(mem_OperatorNewThrow(sizeof(thr_PoolLock*) * capacity));
    unsigned char* inUse = nullptr;
    int made = m_capacity;
    try {
        inUse = static_cast<unsigned char*>(mem_OperatorNewThrow(capacity));
        for (; made < capacity; ++made)
            locks[made] = new thr_PoolLock(made);
    } catch (...) {
        for (int i = m_capacity; i < made; ++i)
            delete locks[i];
        mem_Free(locks);
        mem_Free(inUse);
        throw;
    }
    if (m_capacity > 0) {
        std::memcpy(locks, m_locks, sizeof(thr_PoolLock*) * m_capacity);
        std::memcpy(inUse, m_inUse, m_capacity);
    }
    std::memset(inUse + m_capacity, 0, capacity - m_capacity);
    mem_Free(m_locks);
    mem_Free(m_inUse);
    m_locks = locks;
    m_inUse = inUse;
    m_capacity = capacity;
}

thr_PoolLock* thr_LockPool::GetLock()
{
    thr_MutexGuard guard(*m_mutex);
    if (m_handedOut >= m_capacity)
        Grow();
    int found = -1;
    for (int i = m_searchStart; i < m_capacity && found < 0; ++i)
        if (!m_inUse[i])
            found = i;
    for (int i = 0; i < m_searchStart && found < 0; ++i)
        if (!m_inUse[i])
            found = i;
    m_inUse[found] = 1;
    ++m_handedOut;
    return m_locks[found];
}

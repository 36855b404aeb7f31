#include "thr/thr_Mutex.h"

#include "thr/impl/thr_Os.h"


thr_Mutex::thr_Mutex(unsigned int held) : m_held(held)
{
    thr_os::MutexInit(m_lock);
}

thr_Mutex::~thr_Mutex()
{
    thr_os::MutexDestroy(m_lock);
}

void thr_Mutex::Lock()
{
    thr_os::MutexLock(m_lock);
    m_held.store(1, std::memory_order_relaxed);
}

void thr_Mutex::Unlock()
{
    m_held.store(0, std::memory_order_relaxed);
    thr_os::MutexUnlock(m_lock);
}

int thr_Mutex::TryLock()
{
    if (m_held.load(std::memory_order_relaxed) != 0)
        return 0;
    if (!thr_os::MutexTryLock(m_lock))
        return 0;
    m_held.store(1, std::memory_order_relaxed);
    return 1;
}

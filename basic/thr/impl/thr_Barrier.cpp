#include "thr/thr_Barrier.h"

#include <cstdlib>
#include <thread>

#include "thr/thr_ThreadPool.h"
#include "thr/thr_ThreadSingleton.h"

namespace {

const long kSpinsBetweenChecks = 1000000;

// Gives up the calling thread when another thread has reported a failure through the pool.
void LeaveIfPoolFailed()
{
    thr_ThreadPool* pool = thr_ThreadPool::Existing();
    if (!pool || !pool->ErrorCondition())
        return;
    const int number = thr_ThreadId::Current();
    if (number < 1)
        std::exit(1);
    thr_ThreadPool::TerminateThread(number - 1);
    thr_ThreadPool::ExitThread(number - 1, 1);
}

}  // namespace

thr_Barrier::thr_Barrier() : m_mutex(0), m_arrived(0), m_released(0) {}

thr_Barrier::~thr_Barrier() = default;

void thr_Barrier::SpinWhileReleasedIs(int value)
{
    long spins = 0;
    while (m_released.load(std::memory_order_acquire) == value) {
        // Spinning threads can outnumber the cores: give the scheduler a chance now and then.
        if ((spins & 1023) == 1023)
            std::this_thread::yield();
        if (++spins == kSpinsBetweenChecks) {
            spins = 0;
            LeaveIfPoolFailed();
        }
    }
}

void thr_Barrier::BarrierSync(unsigned int n)
{
    if (n == 1)
        return;
    SpinWhileReleasedIs(1);  // the previous cycle's threads are still leaving
    {
        thr_MutexGuard guard(m_mutex);
        if (static_cast<unsigned int>(++m_arrived) == n)
            m_released.store(1, std::memory_order_release);
    }
    SpinWhileReleasedIs(0);
    {
        thr_MutexGuard guard(m_mutex);
        if (--m_arrived == 0)
            m_released.store(0, std::memory_order_release);
    }
}

/// @class thr_Barrier
/// thr_Barrier: a spinning, reusable barrier for the library's worker threads.
///
/// All n participants call BarrierSync(n); none returns before all have arrived, and none enters
/// the next cycle before all have left the previous one. It busy-waits (the workers are expected
/// to have cores of their own). While spinning it watches the thread pool's error condition: when
/// set, a pool worker terminates itself, and any other thread ends the process with status 1.
///
/// Thread rule: made for several threads at once: every participant of a cycle passes the same
/// n (at least 1), and one barrier serves one group of threads at a time.
#ifndef THR_BARRIER_H
#define THR_BARRIER_H

#include <atomic>

#include "thr/thr_CondVar.h"
#include "thr/thr_Mutex.h"
#include "zul_BasicExport.h"

class ZUL_BASIC_API thr_Barrier : public mem_AllocationOperators {
public:
    thr_Barrier();
    ~thr_Barrier();
    thr_Barrier(const thr_Barrier&) = delete;
    thr_Barrier& operator=(const thr_Barrier&) = delete;

    void BarrierSync(unsigned int n);

private:
    void SpinWhileReleasedIs(int value);

    thr_Mutex m_mutex;
    int m_arrived;
    std::atomic<int> m_released;
    thr_CondVar m_signal;  ///< kept with the barrier; BarrierSync spins instead
};

#endif

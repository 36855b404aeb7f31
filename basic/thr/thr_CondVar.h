/// @class thr_CondVar
/// thr_CondVar: a manual-reset signal. Signal() sets it and it stays set, releasing every waiter,
/// until ResetSignal().
/// Thread rule: Signal, ResetSignal and the waits may come from several threads at once. A waiter
/// leaves when it sees the signal set: on POSIX systems a reset that follows a signal at once can
/// keep a waiter that has not woken yet waiting.
#ifndef THR_CONDVAR_H
#define THR_CONDVAR_H

#include "mem/mem_AllocationOperators.h"
#include "zul_BasicExport.h"

class ZUL_BASIC_API thr_CondVar : public mem_AllocationOperators {
public:
    thr_CondVar();
    ~thr_CondVar();
    thr_CondVar(const thr_CondVar&) = delete;
    thr_CondVar& operator=(const thr_CondVar&) = delete;

    /// Waits until the signal is set; below 1 without limit, otherwise at most `seconds` seconds.
    /// Whether the signal came is not reported.
    void WaitForSignal(int seconds);
    /// The same with a limit in milliseconds (negative: without limit); true when the signal
    /// was set.
    bool WaitForSignalMilliseconds(long milliseconds);
    void Signal();
    void ResetSignal();

private:
    void** m_cell;  ///< heap cell holding the system event
};

#endif

/// @class omi_Timer
/// omi_Timer: a stopwatch for wall-clock and process CPU time. Time adds up over Start/Stop
/// intervals until Reset; while running, the readings include the current interval.
/// Thread rule: one timer, one thread at a time; WallNow and CpuNow from any thread (the CPU time
/// is the whole process's).
#ifndef OMI_TIMER_H
#define OMI_TIMER_H

#include "zul_CoreExport.h"

class ZUL_CORE_API omi_Timer {
public:
    omi_Timer();

    void Start();   ///< no effect while running
    void Stop();    ///< no effect while stopped
    void Reset();   ///< stopped, zero
    bool IsRunning() const { return m_running; }

    double ElapsedSeconds() const;
    double CpuSeconds() const;

    /// Current readings of the clocks the timer uses (monotonic wall seconds, process CPU seconds).
    ///@{
    static double WallNow();
    static double CpuNow();
    ///@}

private:
    bool m_running;
    double m_wallStart;
    double m_cpuStart;
    double m_wallTotal;
    double m_cpuTotal;
};

#endif

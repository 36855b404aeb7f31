#include <windows.h>

#include "omi/omi_Timer.h"

double omi_Timer::CpuNow()
{
    FILETIME created, exited, kernel, user;
    if (!GetProcessTimes(GetCurrentProcess(), &created, &exited, &kernel, &user))
        return 0.0;
    // 100-nanosecond units.
    const unsigned long long k = (static_cast<unsigned long long>(kernel.dwHighDateTime) << 32) | kernel.dwLowDateTime;
    const unsigned long long u = (static_cast<unsigned long long>(user.dwHighDateTime) << 32) | user.dwLowDateTime;
    return static_cast<double>(k + u) * 1e-7;
}

#include "sys/impl/sys_Os.h"

#include <cstdio>
#include <cstdlib>
#include <windows.h>

namespace {

bool CreationTime(HANDLE process, unsigned long long& time)
{
    FILETIME created, exited, kernel, user;
    if (!GetProcessTimes(process, &created, &exited, &kernel, &user))
        return false;
    time = (static_cast<unsigned long long>(created.dwHighDateTime) << 32) | created.dwLowDateTime;
    return true;
}

}  // namespace

void sys_SleepMilliseconds(uint32_t milliseconds)
{
    Sleep(milliseconds == INFINITE ? INFINITE - 1 : static_cast<DWORD>(milliseconds));
}

uint32_t sys_ProcessId()
{
    return static_cast<uint32_t>(GetCurrentProcessId());
}

bool sys_ProcessStartTime(uint32_t processId, char (&startTime)[sys_kStartTimeSize], uint32_t& error)
{
    HANDLE process = OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId);
    if (!process) {
        error = GetLastError();
        return false;
    }
    unsigned long long time = 0;
    const bool ok = CreationTime(process, time);
    if (!ok)
        error = GetLastError();
    CloseHandle(process);
    if (ok)
        std::snprintf(startTime, sys_kStartTimeSize, "%llu", time);
    return ok;
}

bool sys_ProcessRuns(uint32_t processId, const char* startTime)
{
    char* end = nullptr;
    const unsigned long long time = std::strtoull(startTime, &end, 10);
    if (processId == 0 || *startTime < '0' || *startTime > '9' || *end != '\0')
        return true;
    HANDLE process = OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION | SYNCHRONIZE, FALSE, processId);
    if (!process)
        return GetLastError() != ERROR_INVALID_PARAMETER;  // no process has the id
    unsigned long long now = 0;
    bool runs = true;
    if (WaitForSingleObject(process, 0) == WAIT_OBJECT_0)
        runs = false;  // ended; a handle still open keeps its id taken
    else if (CreationTime(process, now))
        runs = now == time;
    CloseHandle(process);
    return runs;
}

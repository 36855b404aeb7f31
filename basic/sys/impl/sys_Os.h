// Operating-system primitives shared by the modules: one definition per platform
// (sys_Os_posix.cpp, sys_Os_win32.cpp). Nothing here is exported or installed. Where a call can
// fail it returns false and sets `error` to the system's code (errno, GetLastError).
#ifndef SYS_OS_H
#define SYS_OS_H

#include <cstddef>
#include <cstdint>

// Sleeps for the given time. An interrupted sleep goes on for the time left; any other failure
// ends it. Never sleeps without limit (on Windows the largest value is one millisecond short of
// INFINITE).
void sys_SleepMilliseconds(uint32_t milliseconds);

uint32_t sys_ProcessId();

// Room for a start-time text and its terminating zero.
const size_t sys_kStartTimeSize = 64;

// The start time of a running process, as a text that tells it from every other process that
// has had or will have its id on this host. POSIX (Linux): "<ticks>/<boot id>", the start in
// clock ticks since boot (field 22 of /proc/<pid>/stat) and the boot id (empty when the system
// does not give one). Windows: the creation time in 100 ns units since 1601, in decimal.
bool sys_ProcessStartTime(uint32_t processId, char (&startTime)[sys_kStartTimeSize], uint32_t& error);

// False only when it is certain that the process that had this id and start time no longer
// runs: no process has the id, the one that has it has ended (a zombie on POSIX), or it started
// at another time. A start time of another platform's form, a process that may not be looked
// at, or a failure to look counts as running.
bool sys_ProcessRuns(uint32_t processId, const char* startTime);

#endif

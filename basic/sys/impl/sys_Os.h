// Operating-system primitives shared by the modules: one definition per platform
// (sys_Os_posix.cpp, sys_Os_win32.cpp). Nothing here is exported or installed. Where a call can
// fail it returns false and sets `error` to the system's code (errno on POSIX systems; on
// Windows GetLastError, or the runtime's _doserrno for its descriptor calls). Module shims keep
// only what is their own (file handles, threads, child processes, listings).
#ifndef SYS_OS_H
#define SYS_OS_H

#include <cstddef>
#include <cstdint>

#include "cow/cow_String.h"

// Sleeps for the given time. An interrupted sleep goes on for the time left; any other failure
// ends it. Never sleeps without limit (on Windows the largest value is one millisecond short of
// INFINITE).
void sys_SleepMilliseconds(uint32_t milliseconds);

uint32_t sys_ProcessId();

// The process's current directory.
[[nodiscard]] bool sys_CurrentDirectory(cow_String& directory, uint32_t& error);

// Creates the file exclusively (it must not exist yet; readable by others, so that a lock file
// tells who holds it), writes the `length` bytes of `contents` into it and closes it: true when
// this call made the file. A write that fails leaves the file short or empty, made all the
// same. A descriptor 0 (standard input closed) counts as no file made, as the container lock
// requires; it is closed at once.
[[nodiscard]] bool sys_CreateExclusive(const char* path, const char* contents, int length, uint32_t& error);

// Deletes the file: true when this call removed it.
bool sys_RemoveFile(const char* path, uint32_t& error);

// The system's own text for one of its error codes (strerror; FormatMessageA on Windows, empty
// when the system has none).
cow_String sys_ErrorText(uint32_t code);

// The host's name (up to 256 characters). On Windows the socket layer is started for the call and
// cleaned up after it (the layer counts its users, so a caller's own start is unaffected).
[[nodiscard]] bool sys_HostName(cow_String& name, uint32_t& error);

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

// The operating-system calls under the thr classes: mutexes, manual-reset events and threads.
// One implementation per platform (thr_Os_posix.cpp, thr_Os_win32.cpp); nothing here is
// exported.
#ifndef THR_OS_H
#define THR_OS_H

#include <cstddef>

#include "mem/mem_Memory.h"

namespace thr_os {

// Bytes reserved inside thr_Mutex for the platform's lock object.
constexpr std::size_t kMutexBytes = 48;

// A recursive lock for its holder (critical section, recursive pthread mutex).
void MutexInit(void* storage);
void MutexDestroy(void* storage);
void MutexLock(void* storage);
[[nodiscard]] bool MutexTryLock(void* storage);
void MutexUnlock(void* storage);

// A manual-reset event: once set it stays set, releasing every waiter, until reset.
[[nodiscard]] void* EventCreate();
void EventDestroy(void* event);
void EventSet(void* event);
void EventReset(void* event);
// Waits until the event is set or `milliseconds` have passed (negative: without limit).
// Returns true when the event was set.
bool EventWait(void* event, long milliseconds);

typedef void* Thread;
typedef unsigned (*ThreadEntry)(void* argument);

// A record from the memory layer that holds what a new thread runs (members `entry` and
// `argument`); the platform part keeps its own fields beside them. Null when there is no memory.
template <class Record>
Record* NewThreadRecord(ThreadEntry entry, void* argument)
{
    Record* record = static_cast<Record*>(mem_Malloc(sizeof(Record)));
    if (record) {
        record->entry = entry;
        record->argument = argument;
    }
    return record;
}

// Starts a thread with the default stack size; null when the system refuses.
[[nodiscard]] Thread ThreadStart(ThreadEntry entry, void* argument);
// Waits up to `milliseconds` for the thread to end (negative: without limit); true when it has.
bool ThreadWait(Thread thread, long milliseconds);
// Releases the handle; a thread still running goes on, detached.
void ThreadClose(Thread thread);
// Ends the calling thread without unwinding its frames.
[[noreturn]] void ThreadExitCurrent(int code);
bool ThreadSuspend(Thread thread);
bool ThreadResume(Thread thread);

// An id of the calling thread, comparable with CurrentThreadId() of other threads.
unsigned long CurrentThreadId();

// One pointer per thread, kept in the system's own thread storage. The hook, once set, runs in
// every exiting thread whose pointer is not null, with that pointer (on the main thread the
// library's tear-down does the work instead).
void SetThreadBlockExitHook(void (*hook)(void* block));
void* ThreadBlock();
void SetThreadBlock(void* block);

}  // namespace thr_os

#endif

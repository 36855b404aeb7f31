#include "thr/impl/thr_Os.h"

#include <windows.h>
#include <process.h>

#include "mem/mem_Memory.h"
#include "mem/mem_OutOfMemory.h"

namespace thr_os {

static_assert(sizeof(CRITICAL_SECTION) <= kMutexBytes, "thr_Mutex storage too small");

void MutexInit(void* storage) { InitializeCriticalSection(static_cast<CRITICAL_SECTION*>(storage)); }
void MutexDestroy(void* storage) { DeleteCriticalSection(static_cast<CRITICAL_SECTION*>(storage)); }
void MutexLock(void* storage) { EnterCriticalSection(static_cast<CRITICAL_SECTION*>(storage)); }
bool MutexTryLock(void* storage) { return TryEnterCriticalSection(static_cast<CRITICAL_SECTION*>(storage)) != 0; }
void MutexUnlock(void* storage) { LeaveCriticalSection(static_cast<CRITICAL_SECTION*>(storage)); }

// The event handle lives in an 8-byte heap cell owned by thr_CondVar; here the handle itself is
// the event.
void* EventCreate()
{
    HANDLE h = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    if (!h)
        mem_ThrowOutOfMemory(0);
    return h;
}

void EventDestroy(void* event) { CloseHandle(static_cast<HANDLE>(event)); }
void EventSet(void* event) { SetEvent(static_cast<HANDLE>(event)); }
void EventReset(void* event) { ResetEvent(static_cast<HANDLE>(event)); }

bool EventWait(void* event, long milliseconds)
{
    const DWORD ms = milliseconds < 0 ? INFINITE : static_cast<DWORD>(milliseconds);
    return WaitForSingleObject(static_cast<HANDLE>(event), ms) == WAIT_OBJECT_0;
}

namespace {

struct ThreadRecord {
    ThreadEntry entry;
    void* argument;
};

unsigned __stdcall Trampoline(void* p)
{
    ThreadRecord r = *static_cast<ThreadRecord*>(p);
    mem_Free(p);
    return r.entry(r.argument);
}

}  // namespace

Thread ThreadStart(ThreadEntry entry, void* argument)
{
    ThreadRecord* r = NewThreadRecord<ThreadRecord>(entry, argument);
    if (!r)
        return nullptr;
    const uintptr_t h = _beginthreadex(nullptr, 0, &Trampoline, r, 0, nullptr);
    if (h == 0) {
        mem_Free(r);
        return nullptr;
    }
    return reinterpret_cast<HANDLE>(h);
}

bool ThreadWait(Thread thread, long milliseconds)
{
    const DWORD ms = milliseconds < 0 ? INFINITE : static_cast<DWORD>(milliseconds);
    return WaitForSingleObject(static_cast<HANDLE>(thread), ms) == WAIT_OBJECT_0;
}

void ThreadClose(Thread thread)
{
    if (thread)
        CloseHandle(static_cast<HANDLE>(thread));
}

void ThreadExitCurrent(int code) { _endthreadex(static_cast<unsigned>(code)); }

bool ThreadSuspend(Thread thread) { return SuspendThread(static_cast<HANDLE>(thread)) != static_cast<DWORD>(-1); }
bool ThreadResume(Thread thread) { return ResumeThread(static_cast<HANDLE>(thread)) != static_cast<DWORD>(-1); }

unsigned long CurrentThreadId() { return GetCurrentThreadId(); }

namespace {

void (*g_exitHook)(void*) = nullptr;
DWORD g_blockSlot = FLS_OUT_OF_INDEXES;
INIT_ONCE g_blockSlotOnce = INIT_ONCE_STATIC_INIT;

void WINAPI RunExitHook(void* block)
{
    if (block && g_exitHook)
        g_exitHook(block);
}

BOOL CALLBACK MakeBlockSlot(INIT_ONCE*, void*, void**)
{
    g_blockSlot = FlsAlloc(&RunExitHook);
    return TRUE;
}

DWORD BlockSlot()
{
    InitOnceExecuteOnce(&g_blockSlotOnce, &MakeBlockSlot, nullptr, nullptr);
    return g_blockSlot;
}

}  // namespace

void SetThreadBlockExitHook(void (*hook)(void*))
{
    BlockSlot();
    g_exitHook = hook;
}

void* ThreadBlock()
{
    const DWORD slot = BlockSlot();
    return slot == FLS_OUT_OF_INDEXES ? nullptr : FlsGetValue(slot);
}

void SetThreadBlock(void* block)
{
    const DWORD slot = BlockSlot();
    if (slot != FLS_OUT_OF_INDEXES)
        FlsSetValue(slot, block);
}

}  // namespace thr_os

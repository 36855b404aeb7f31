#include "mem_PoolOs.h"

#include <malloc.h>
#include <windows.h>

namespace mem_os {

void* Reserve(size_t bytes) { return VirtualAlloc(nullptr, bytes, MEM_RESERVE, PAGE_NOACCESS); }

bool Commit(void* p, size_t bytes) { return VirtualAlloc(p, bytes, MEM_COMMIT, PAGE_READWRITE) != nullptr; }

size_t RuntimeBlockSize(void* p) { return _msize(p); }

namespace {

void (*g_exitHook)(void*) = nullptr;
INIT_ONCE g_exitSlotOnce = INIT_ONCE_STATIC_INIT;
DWORD g_exitSlot = FLS_OUT_OF_INDEXES;

// Fiber-local storage runs its callback in every ending thread whose value is set.
void WINAPI RunExitHook(void* data)
{
    if (data && g_exitHook)
        g_exitHook(data);
}

BOOL CALLBACK MakeExitSlot(PINIT_ONCE, void*, void**)
{
    g_exitSlot = FlsAlloc(&RunExitHook);
    return TRUE;
}

DWORD ExitSlot()
{
    InitOnceExecuteOnce(&g_exitSlotOnce, &MakeExitSlot, nullptr, nullptr);
    return g_exitSlot;
}

}  // namespace

void SetThreadExitHook(void (*hook)(void*))
{
    ExitSlot();
    g_exitHook = hook;
}

bool WatchThreadExit(void* data)
{
    const DWORD slot = ExitSlot();
    return slot != FLS_OUT_OF_INDEXES && FlsSetValue(slot, data);
}

}  // namespace mem_os

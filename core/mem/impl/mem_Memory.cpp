#include "mem/mem_Memory.h"

#include <atomic>
#include <cstdlib>

#include "mem/mem_OutOfMemory.h"

namespace {

// Both are constant-initialised: no start-up work.
std::atomic<long> g_failIn{0};
std::atomic<mem_OutOfMemoryThrower> g_thrower{nullptr};

// True when the armed failure hook says this allocation must fail.
bool HookFires()
{
    long c = g_failIn.load(std::memory_order_relaxed);
    while (c > 0) {
        if (g_failIn.compare_exchange_weak(c, c - 1, std::memory_order_relaxed))
            return c == 1;
    }
    return false;
}

void* AllocateOrThrow(size_t size)
{
    void* p = HookFires() ? nullptr : std::malloc(size ? size : 1);
    if (!p)
        mem_ThrowOutOfMemory(size);
    return p;
}

}  // namespace

void* mem_OperatorNewThrow(size_t size) { return AllocateOrThrow(size); }

// Small blocks take the ordinary path: the runtime heap already serves them well, and one
// free function then releases both kinds.
void* mem_OperatorNewTinyThrow(size_t size) { return AllocateOrThrow(size); }

void* mem_OperatorNewThrowBuiltin(size_t size) { return AllocateOrThrow(size); }

void* mem_Malloc(size_t size)
{
    if (HookFires())
        return nullptr;
    return std::malloc(size);
}

void* mem_Realloc(void* p, size_t size)
{
    if (HookFires())
        return nullptr;
    return std::realloc(p, size);
}

void mem_Free(void* p) { std::free(p); }

void mem_formalize() {}

mem_OutOfMemoryThrower mem_SetOutOfMemoryThrower(mem_OutOfMemoryThrower t)
{
    return g_thrower.exchange(t, std::memory_order_acq_rel);
}

mem_OutOfMemoryThrower mem_GetOutOfMemoryThrower() { return g_thrower.load(std::memory_order_acquire); }

void mem_TestFailAllocation(long n) { g_failIn.store(n > 0 ? n : 0, std::memory_order_relaxed); }

long mem_TestFailAllocationPending() { return g_failIn.load(std::memory_order_relaxed); }

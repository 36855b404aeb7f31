#include "mem/mem_Memory.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "mem/mem_OutOfMemory.h"
#include "mem_Pool.h"

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

// Small blocks from the pool, the others (and all of them when the pool cannot serve) from the
// runtime heap. Null on failure. Inlined into each entry point, so that the pool's pop is the
// whole of a small allocation.
inline __attribute__((always_inline)) void* Allocate(size_t size)
{
    if (size <= mem_pool::kMaxSmall) {
        if (void* p = mem_pool::Allocate(size))
            return p;
    }
    return std::malloc(size ? size : 1);
}

inline __attribute__((always_inline)) void* AllocateOrThrow(size_t size)
{
    void* p = HookFires() ? nullptr : Allocate(size);
    if (!p)
        mem_ThrowOutOfMemory(size);
    return p;
}

}  // namespace

void* mem_OperatorNewThrow(size_t size) { return AllocateOrThrow(size); }

void* mem_OperatorNewTinyThrow(size_t size) { return AllocateOrThrow(size); }

void* mem_OperatorNewThrowBuiltin(size_t size) { return AllocateOrThrow(size); }

void* mem_Malloc(size_t size)
{
    if (HookFires())
        return nullptr;
    return Allocate(size);
}

// Growth by small steps (a table that gains a few slots at a time) is served in place: a runtime
// block that must move is given half as much again as it had, so that the next steps fit.
void* mem_Realloc(void* p, size_t size)
{
    if (HookFires())
        return nullptr;
    if (!p)
        return Allocate(size);
    if (size == 0) {
        mem_Free(p);
        return nullptr;
    }
    if (const size_t have = mem_pool::BlockSize(p)) {
        if (size <= have)
            return p;
        void* q = Allocate(size);
        if (!q)
            return nullptr;
        std::memcpy(q, p, have);
        mem_pool::Free(p);
        return q;
    }
#if MEM_POOL_BUILT
    const size_t have = mem_os::RuntimeBlockSize(p);
    if (size <= have && size >= have / 2)
        return p;
    if (size > have && size < have + have / 2) {
        if (void* q = std::realloc(p, have + have / 2))
            return q;
    }
#endif
    return std::realloc(p, size);
}

void mem_Free(void* p)
{
    if (!mem_pool::Free(p))
        std::free(p);
}

// Above the pool's sizes: whole cache lines, and from 2 KiB whole multiples of 256 bytes. A text
// copied into a buffer placed just a few bytes more than a page after its source runs at a
// fraction of the speed (the processor takes the stores for stores to the loads' addresses);
// coarser sizes keep a heap's neighbouring buffers from falling that way.
size_t mem_GoodSize(size_t size)
{
    if (size <= mem_pool::kMaxSmall)
        return mem_pool::GoodSize(size);
    const size_t step = size < 2048 ? 64 : 256;
    return (size + step - 1) & ~(step - 1);
}

void mem_formalize() {}

void* mem_ThreadObject(const void* tag, void* (*make)(), void (*destroy)(void*))
{
    return mem_pool::ThreadObject(tag, make, destroy);
}

void mem_GetPoolStatistics(mem_PoolStatistics* out) { mem_pool::Statistics(out); }

mem_OutOfMemoryThrower mem_SetOutOfMemoryThrower(mem_OutOfMemoryThrower t)
{
    return g_thrower.exchange(t, std::memory_order_acq_rel);
}

mem_OutOfMemoryThrower mem_GetOutOfMemoryThrower() { return g_thrower.load(std::memory_order_acquire); }

void mem_TestFailAllocation(long n) { g_failIn.store(n > 0 ? n : 0, std::memory_order_relaxed); }

long mem_TestFailAllocationPending() { return g_failIn.load(std::memory_order_relaxed); }

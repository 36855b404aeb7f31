#include "mem_Pool.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>

#include "mem/mem_OutOfMemory.h"
#include "mem_PoolOs.h"

namespace mem_pool {

__thread ThreadState* t_state MEM_TLS_MODEL = nullptr;
std::atomic<uintptr_t> g_base{0};
std::atomic<uint8_t*> g_classes{nullptr};
std::atomic<size_t> g_size{0};

namespace {

std::atomic<size_t> g_carved{0};

enum { kUntried, kOn, kOff };
std::atomic<int> g_mode{kUntried};

std::mutex g_lock;  // guards the lists below and the start-up
ThreadState* g_idle = nullptr;
ThreadState* g_all = nullptr;  // every state made: they stay reachable for leak checkers
int g_states = 0;
int g_idleStates = 0;

void ThreadEnds(void* data);

bool PoolWanted()
{
    if (!MEM_POOL_BUILT)
        return false;
    const char* setting = std::getenv("ZUL_MEM_POOL");
    return !(setting && std::strcmp(setting, "off") == 0);
}

// Reserves the range and the class bytes beside it; the largest size the system grants.
void StartUp()
{
    mem_os::SetThreadExitHook(&ThreadEnds);
    if (!PoolWanted()) {
        g_mode.store(kOff, std::memory_order_release);
        return;
    }
    for (size_t gib : {64, 16, 4, 1}) {
        const size_t bytes = gib << 30;
        // One extra chunk so that the first can start on a chunk boundary.
        char* raw = static_cast<char*>(mem_os::Reserve(bytes + kChunk));
        if (!raw)
            continue;
        uint8_t* classes = static_cast<uint8_t*>(mem_os::Reserve(bytes / kGranule));
        if (!classes)
            continue;  // the range stays reserved and unused: rare, and only address space
        const uintptr_t base = (reinterpret_cast<uintptr_t>(raw) + kChunk - 1) & ~(uintptr_t(kChunk) - 1);
        g_base.store(base, std::memory_order_relaxed);
        g_classes.store(classes, std::memory_order_relaxed);
        g_size.store(bytes, std::memory_order_release);
        g_mode.store(kOn, std::memory_order_release);
        return;
    }
    g_mode.store(kOff, std::memory_order_release);
}

void EnsureStarted()
{
    if (g_mode.load(std::memory_order_acquire) != kUntried)
        return;
    std::lock_guard<std::mutex> hold(g_lock);
    if (g_mode.load(std::memory_order_relaxed) == kUntried)
        StartUp();
}

// The calling thread's state: its own, a waiting one of an ended thread, or a new one; null
// when none can be made.
ThreadState* State()
{
    if (ThreadState* t = t_state)
        return t;
    EnsureStarted();
    ThreadState* t;
    {
        std::lock_guard<std::mutex> hold(g_lock);
        t = g_idle;
        if (t) {
            g_idle = t->nextIdle;
            --g_idleStates;
        } else {
            void* raw = std::malloc(sizeof(ThreadState));
            if (!raw)
                return nullptr;
            t = ::new (raw) ThreadState();
            t->pooled = g_mode.load(std::memory_order_relaxed) == kOn;
            t->nextAll = g_all;
            g_all = t;
            ++g_states;
        }
    }
    t_state = t;
    mem_os::WatchThreadExit(t);
    return t;
}

// The ending thread's objects go first (their destruction may free blocks to its lists); the
// state then waits for the next new thread.
void ThreadEnds(void* data)
{
    ThreadState* t = static_cast<ThreadState*>(data);
    while (ThreadObjectEntry* e = t->objects) {
        t->objects = e->next;
        e->destroy(e->object);
        std::free(e);
    }
    t_state = nullptr;
    std::lock_guard<std::mutex> hold(g_lock);
    t->nextIdle = g_idle;
    g_idle = t;
    ++g_idleStates;
}

void MarkClass(uintptr_t block, int c)
{
    const uintptr_t base = g_base.load(std::memory_order_relaxed);
    g_classes.load(std::memory_order_relaxed)[(block - base) / kGranule] = static_cast<uint8_t>(c + 1);
}

// Makes `chunk` the one being carved, from its start.
void StartCarving(ThreadState* t, Chunk* chunk)
{
    t->carving = chunk;
    t->bump = reinterpret_cast<char*>(chunk) + kChunkHead;
    t->end = reinterpret_cast<char*>(chunk) + kChunk;
}

// The next chunk to carve: one whose blocks have all come back, else a new one from the range.
bool NextChunk(ThreadState* t)
{
    if (Chunk* chunk = t->empty) {
        t->empty = chunk->nextEmpty;
        StartCarving(t, chunk);
        return true;
    }
    const size_t size = g_size.load(std::memory_order_acquire);
    const size_t at = g_carved.fetch_add(kChunk, std::memory_order_relaxed);
    if (at + kChunk > size)
        return false;  // the range is used up: later blocks come from the runtime heap
    char* raw = reinterpret_cast<char*>(g_base.load(std::memory_order_relaxed) + at);
    if (!mem_os::Commit(raw, kChunk) ||
        !mem_os::Commit(g_classes.load(std::memory_order_relaxed) + at / kGranule, kChunk / kGranule))
        return false;
    Chunk* chunk = ::new (raw) Chunk();
    chunk->owner = t;
    StartCarving(t, chunk);
    return true;
}

// A new block of class c from the chunk being carved. Classes that are multiples of 16 start on
// a 16-byte boundary; the 8 bytes that may be skipped for that stay unused, so that blocks made
// together keep to the cache lines they were carved in (a handle, its count cell and its node
// make one 64-byte line).
void* Carve(ThreadState* t, int c)
{
    const size_t size = kClassSize[c];
    const uintptr_t align = size % 16 == 0 ? 16 : 8;
    uintptr_t at = (reinterpret_cast<uintptr_t>(t->bump) + align - 1) & ~(align - 1);
    if (!t->carving || at + size > reinterpret_cast<uintptr_t>(t->end)) {
        if (!NextChunk(t))
            return nullptr;
        at = (reinterpret_cast<uintptr_t>(t->bump) + align - 1) & ~(align - 1);
    }
    MarkClass(at, c);
    t->bump = reinterpret_cast<char*>(at + size);
    ++t->carving->live;
    return reinterpret_cast<void*>(at);
}

// Pops a block of class c from the first chunk on avail[c] that still holds one.
FreeBlock* PopListed(ThreadState* t, int c)
{
    while (Chunk* chunk = t->avail[c]) {
        if (FreeBlock* b = chunk->free[c]) {
            chunk->free[c] = b->next;
            ++chunk->live;
            return b;
        }
        t->avail[c] = chunk->nextAvail[c];
        chunk->listed &= ~(uint32_t(1) << c);
    }
    return nullptr;
}

}  // namespace

// A chunk whose blocks have all come back is carved afresh later, so that what is made next
// lies together again however the blocks were freed. Its lists are dropped: where it heads an
// avail list it leaves it at once (so that a program that frees everything it made, and makes it
// again, carves on the inline path instead of meeting an empty list each time); entries further
// down are dropped when met.
void Recycle(ThreadState* t, Chunk* chunk)
{
    for (int c = 0; c < kClasses; ++c) {
        chunk->free[c] = nullptr;
        if (t->avail[c] == chunk) {
            t->avail[c] = chunk->nextAvail[c];
            chunk->listed &= ~(uint32_t(1) << c);
        }
    }
    if (chunk == t->carving) {
        StartCarving(t, chunk);
    } else {
        chunk->nextEmpty = t->empty;
        t->empty = chunk;
    }
}

void* AllocateSlow(size_t size)
{
    ThreadState* t = State();
    if (!t || !t->pooled)
        return nullptr;
    const int c = kClassOf[(size + 7) / 8];
    if (FreeBlock* b = PopListed(t, c))
        return b;
    if (t->returned[c].load(std::memory_order_relaxed)) {
        FreeBlock* list = t->returned[c].exchange(nullptr, std::memory_order_acquire);
        const uintptr_t base = g_base.load(std::memory_order_relaxed);
        while (list) {
            FreeBlock* next = list->next;
            PutBack(t, ChunkOf(reinterpret_cast<uintptr_t>(list), base), list, c);
            list = next;
        }
        if (FreeBlock* b = PopListed(t, c))
            return b;
    }
    return Carve(t, c);
}

size_t GoodSize(size_t size)
{
    EnsureStarted();
    return g_mode.load(std::memory_order_relaxed) == kOn ? kClassSize[kClassOf[(size + 7) / 8]] : size;
}

size_t BlockSize(const void* p)
{
    const size_t size = g_size.load(std::memory_order_acquire);
    const uintptr_t offset = reinterpret_cast<uintptr_t>(p) - g_base.load(std::memory_order_relaxed);
    if (offset >= size)
        return 0;
    const int c = g_classes.load(std::memory_order_relaxed)[offset / kGranule] - 1;
    if (c < 0)
        std::abort();  // not the start of a block: the heap is corrupt
    return kClassSize[c];
}

void ReturnToOwner(ThreadState* owner, FreeBlock* b, int c)
{
    FreeBlock* head = owner->returned[c].load(std::memory_order_relaxed);
    do {
        b->next = head;
    } while (!owner->returned[c].compare_exchange_weak(head, b, std::memory_order_release, std::memory_order_relaxed));
}

void* ThreadObject(const void* tag, void* (*make)(), void (*destroy)(void*))
{
    ThreadState* t = State();
    if (!t)
        mem_ThrowOutOfMemory(sizeof(ThreadState));
    for (ThreadObjectEntry* e = t->objects; e; e = e->next) {
        if (e->tag == tag)
            return e->object;
    }
    void* object = make();
    ThreadObjectEntry* e = static_cast<ThreadObjectEntry*>(std::malloc(sizeof(ThreadObjectEntry)));
    if (!e) {
        destroy(object);
        mem_ThrowOutOfMemory(sizeof(ThreadObjectEntry));
    }
    e->tag = tag;
    e->object = object;
    e->destroy = destroy;
    e->next = t->objects;
    t->objects = e;
    return object;
}

void Statistics(mem_PoolStatistics* out)
{
    EnsureStarted();
    std::lock_guard<std::mutex> hold(g_lock);
    out->enabled = g_mode.load(std::memory_order_relaxed) == kOn ? 1 : 0;
    out->reservedBytes = g_size.load(std::memory_order_relaxed);
    const size_t carved = g_carved.load(std::memory_order_relaxed);
    out->carvedBytes = carved < out->reservedBytes ? carved : out->reservedBytes;
    out->threadStates = g_states;
    out->idleThreadStates = g_idleStates;
}

}  // namespace mem_pool

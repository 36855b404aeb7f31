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

namespace {

// Size classes: 8-byte steps up to 64, then 16-byte steps up to 128, then 32-byte steps.
const int kClasses = 16;
const uint16_t kClassSize[kClasses] = {8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256};
// Class of a size, indexed by (size + 7) / 8.
const uint8_t kClassOf[kMaxSmall / 8 + 1] = {
    0, 0, 1, 2, 3, 4, 5, 6, 7,                      // 0 .. 64
    8, 8, 9, 9, 10, 10, 11, 11,                     // 65 .. 128
    12, 12, 12, 12, 13, 13, 13, 13,                 // 129 .. 192
    14, 14, 14, 14, 15, 15, 15, 15};                // 193 .. 256

const size_t kGranule = 8;                // one class byte per 8 bytes of the range
const size_t kChunk = size_t(256) << 10;  // what a thread takes from the range at a time

struct FreeBlock {
    FreeBlock* next;
};

struct ThreadState;

// The head of every chunk. Only the owning thread reads or writes it, apart from `owner`, which
// is set once.
struct Chunk {
    ThreadState* owner;
    int32_t live;                     // blocks handed out and not back in this chunk's lists
    uint32_t listed;                  // bit c: the chunk is on its owner's avail[c] list
    FreeBlock* free[kClasses];        // freed blocks of each class, last freed first
    Chunk* nextAvail[kClasses];
    Chunk* nextEmpty;
};
const size_t kChunkHead = (sizeof(Chunk) + 63) & ~size_t(63);

struct ThreadObjectEntry {
    const void* tag;
    void* object;
    void (*destroy)(void*);
    ThreadObjectEntry* next;
};

struct ThreadState {
    // Touched by the owning thread only.
    Chunk* avail[kClasses];  // chunks holding freed blocks of each class (an entry whose list has
                             // since been emptied is dropped when met)
    Chunk* carving;          // the chunk being carved front to back, from bump to end
    char* bump;
    char* end;
    Chunk* empty;  // chunks whose blocks are all free, to be carved afresh
    ThreadObjectEntry* objects;
    ThreadState* nextIdle;
    ThreadState* nextAll;
    bool pooled;
    char apart[64];  // keeps the owner's fields off the cache lines written by other threads
    // Blocks of the owner freed by other threads.
    std::atomic<FreeBlock*> returned[kClasses];
};

// Set once, before any pool block exists; g_size is published last (release), so that a reader
// who sees a size also sees the base and the class bytes.
std::atomic<uintptr_t> g_base{0};
std::atomic<uint8_t*> g_classes{nullptr};
std::atomic<size_t> g_size{0};
std::atomic<size_t> g_carved{0};

enum { kUntried, kOn, kOff };
std::atomic<int> g_mode{kUntried};

std::mutex g_lock;  // guards the lists below and the start-up
ThreadState* g_idle = nullptr;
ThreadState* g_all = nullptr;
int g_states = 0;
int g_idleStates = 0;

thread_local ThreadState* t_state MEM_TLS_MODEL = nullptr;

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

Chunk* ChunkOf(uintptr_t block, uintptr_t base)
{
    return reinterpret_cast<Chunk*>(base + ((block - base) & ~(uintptr_t(kChunk) - 1)));
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

// A chunk whose blocks have all come back is carved afresh later, so that what is made next
// lies together again however the blocks were freed. Its lists are dropped (entries for it on
// the avail lists are dropped when met).
void Recycle(ThreadState* t, Chunk* chunk)
{
    for (FreeBlock*& list : chunk->free)
        list = nullptr;
    if (chunk == t->carving) {
        StartCarving(t, chunk);
    } else {
        chunk->nextEmpty = t->empty;
        t->empty = chunk;
    }
}

// Puts a block of the thread's own back in its chunk's list.
void PutBack(ThreadState* t, Chunk* chunk, FreeBlock* b, int c)
{
    b->next = chunk->free[c];
    chunk->free[c] = b;
    const uint32_t bit = uint32_t(1) << c;
    if (!(chunk->listed & bit)) {
        chunk->listed |= bit;
        chunk->nextAvail[c] = t->avail[c];
        t->avail[c] = chunk;
    }
    if (--chunk->live == 0)
        Recycle(t, chunk);
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

// Everything but the pop from the first listed chunk: kept out of line so that the pop needs no
// stack frame.
__attribute__((noinline)) void* AllocateSlow(size_t size)
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

}  // namespace

void* Allocate(size_t size)
{
    if (ThreadState* t = t_state) {
        const int c = kClassOf[(size + 7) / 8];
        if (Chunk* chunk = t->avail[c]) {
            if (FreeBlock* b = chunk->free[c]) {
                FreeBlock* next = b->next;
                chunk->free[c] = next;
                ++chunk->live;
                __builtin_prefetch(next);  // the next pop reads it
                return b;
            }
        }
    }
    return AllocateSlow(size);
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

bool Free(void* p)
{
    const size_t size = g_size.load(std::memory_order_acquire);
    const uintptr_t base = g_base.load(std::memory_order_relaxed);
    const uintptr_t offset = reinterpret_cast<uintptr_t>(p) - base;
    if (offset >= size)
        return false;
    const int c = g_classes.load(std::memory_order_relaxed)[offset / kGranule] - 1;
    if (c < 0)
        std::abort();  // not the start of a block: the heap is corrupt
    Chunk* chunk = ChunkOf(reinterpret_cast<uintptr_t>(p), base);
    ThreadState* owner = chunk->owner;
    FreeBlock* b = static_cast<FreeBlock*>(p);
    if (owner == t_state) {
        PutBack(owner, chunk, b, c);
        return true;
    }
    FreeBlock* head = owner->returned[c].load(std::memory_order_relaxed);
    do {
        b->next = head;
    } while (!owner->returned[c].compare_exchange_weak(head, b, std::memory_order_release, std::memory_order_relaxed));
    return true;
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

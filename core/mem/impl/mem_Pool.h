// The small-block pool under the memory layer, and the per-thread state it keeps. Internal to
// the lower library; the fast paths are inline here so that the entry points of mem_Memory.cpp
// take them without a call.
//
// Blocks of up to kMaxSmall bytes come from chunks of 256 KiB of one address range reserved at
// the first request. Each thread carves the blocks it needs, of any size class, one after the
// other from a chunk of its own (so that blocks made together, such as a node, its handle and its
// count cell, lie together). A freed block goes back to a list of its own chunk and class; a
// thread allocates from the freed blocks of one chunk at a time, so that what it makes stays
// close together however the blocks were freed, and a chunk whose blocks have all come back is
// carved front to back again. A block is recognised by its address: the range tells a pool block
// from a runtime one, a byte per 8 bytes beside the range gives its size class, and the head of
// its chunk names the thread state that owns it. A block freed by another thread goes to the
// owner's list for such returns (lock-free) and is put back when the owner runs short of that
// class.
//
// A thread's state outlives the thread: when a thread ends, its state (with its chunks and the
// blocks on their lists) waits for the next new thread, so threads that come and go reuse the
// same memory. Memory of the pool is never returned to the system; it serves later small blocks.
//
// The pool is off in builds with the address sanitizer (which must see every block) and when the
// environment variable ZUL_MEM_POOL is "off" at the first allocation: every block then comes from
// the runtime heap.
#ifndef MEM_POOL_H
#define MEM_POOL_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "mem/mem_Memory.h"
#include "mem_PoolOs.h"

// 0 in builds with the address sanitizer: the runtime heap serves everything, exactly sized.
#if defined(__SANITIZE_ADDRESS__)
#define MEM_POOL_BUILT 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define MEM_POOL_BUILT 0
#endif
#endif
#ifndef MEM_POOL_BUILT
#define MEM_POOL_BUILT 1
#endif

namespace mem_pool {

const size_t kMaxSmall = 256;

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
extern std::atomic<uintptr_t> g_base;
extern std::atomic<uint8_t*> g_classes;
extern std::atomic<size_t> g_size;
// __thread rather than thread_local: a plain pointer with no initialisation to check for on
// each use from another file.
extern __thread ThreadState* t_state MEM_TLS_MODEL;

// Everything an allocation needs beyond a pop from the thread's first listed chunk.
void* AllocateSlow(size_t size);
// The end of a chunk's last live block: the chunk is carved afresh later.
void Recycle(ThreadState* t, Chunk* chunk);
// A block freed by a thread other than its owner's.
void ReturnToOwner(ThreadState* owner, FreeBlock* b, int c);

// A block of at least `size` (at most kMaxSmall) bytes, aligned to 16 when its size class is a
// multiple of 16 and to 8 otherwise; null when the pool does not serve it (off, out of address
// space or out of thread states): the caller then uses the runtime heap.
inline void* Allocate(size_t size)
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
        } else if (!t->returned[c].load(std::memory_order_relaxed)) {
            // Nothing of this class to reuse: the next block of the chunk being carved (a thread
            // without one has a null bump and end, and takes the slow path).
            const size_t bytes = kClassSize[c];
            const uintptr_t align = bytes % 16 == 0 ? 16 : 8;
            const uintptr_t at = (reinterpret_cast<uintptr_t>(t->bump) + align - 1) & ~(align - 1);
            if (at + bytes <= reinterpret_cast<uintptr_t>(t->end)) {
                const uintptr_t base = g_base.load(std::memory_order_relaxed);
                g_classes.load(std::memory_order_relaxed)[(at - base) / kGranule] = static_cast<uint8_t>(c + 1);
                t->bump = reinterpret_cast<char*>(at + bytes);
                ++t->carving->live;
                return reinterpret_cast<void*>(at);
            }
        }
    }
    return AllocateSlow(size);
}

inline Chunk* ChunkOf(uintptr_t block, uintptr_t base)
{
    return reinterpret_cast<Chunk*>(base + ((block - base) & ~(uintptr_t(kChunk) - 1)));
}

// Puts a block of the thread's own back in its chunk's list.
inline void PutBack(ThreadState* t, Chunk* chunk, FreeBlock* b, int c)
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

// Takes a pool block back; false (nothing done) when p is not one.
inline bool Free(void* p)
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
    FreeBlock* b = static_cast<FreeBlock*>(p);
    if (chunk->owner == t_state)
        PutBack(chunk->owner, chunk, b, c);
    else
        ReturnToOwner(chunk->owner, b, c);
    return true;
}

// What a request of `size` (at most kMaxSmall) bytes is given: its class size when the pool is
// on, `size` when it is off.
size_t GoodSize(size_t size);
// The usable bytes of a pool block; 0 when p is not one.
size_t BlockSize(const void* p);

// The calling thread's object for `tag` (see mem_ThreadObject).
void* ThreadObject(const void* tag, void* (*make)(), void (*destroy)(void*));

void Statistics(mem_PoolStatistics* out);

}  // namespace mem_pool

#endif

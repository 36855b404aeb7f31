// The small-block pool under the memory layer, and the per-thread state it keeps.
//
// Blocks of up to kMaxSmall bytes come from chunks of one address range reserved at the first
// request. Each thread carves the blocks it needs, of any size class, one after the other from
// a chunk of its own (so that blocks made together, such as a node, its handle and its count
// cell, lie together), and keeps the blocks freed to it in one list per size class. A block is
// recognised by its address: the range tells a pool block from a runtime one, a byte per 8 bytes
// beside the range gives its size class, and the head of its chunk names the thread state that
// owns it. A block freed by another thread goes to the owner's list for such returns (lock-free)
// and is taken back when the owner's own list of that class runs dry.
//
// A thread's state outlives the thread: when a thread ends, its state (with the blocks on its
// lists) waits for the next new thread, so threads that come and go reuse the same memory.
// Memory of the pool is never returned to the system; it serves later small blocks.
//
// The pool is off in builds with the address sanitizer (which must see every block) and when the
// environment variable ZUL_MEM_POOL is "off" at the first allocation: every block then comes from
// the runtime heap.
#ifndef MEM_POOL_H
#define MEM_POOL_H

#include <cstddef>

#include "mem/mem_Memory.h"

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

// A block of at least `size` (at most kMaxSmall) bytes, aligned to 16 when its size class is a
// multiple of 16 and to 8 otherwise; null when the pool does not serve it (off, out of address
// space or out of thread states): the caller then uses the runtime heap.
void* Allocate(size_t size);
// What a request of `size` (at most kMaxSmall) bytes is given: its class size when the pool is
// on, `size` when it is off.
size_t GoodSize(size_t size);
// The usable bytes of a pool block; 0 when p is not one.
size_t BlockSize(const void* p);
// Takes a pool block back; false (nothing done) when p is not one.
bool Free(void* p);

// The calling thread's object for `tag` (see mem_ThreadObject).
void* ThreadObject(const void* tag, void* (*make)(), void (*destroy)(void*));

void Statistics(mem_PoolStatistics* out);

}  // namespace mem_pool

#endif

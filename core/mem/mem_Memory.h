/// @file
/// The memory layer: every heap block of both libraries comes from here.
///
/// Blocks of up to 256 bytes, from every entry point, come from a small-block pool with a cache per
/// thread; larger ones from the runtime heap (malloc/realloc/free). The throwing entry points never
/// return null: on exhaustion they call the installed out-of-memory thrower (the upper library
/// installs one that raises its own exception) and, when none is installed or it returns, throw
/// std::bad_alloc. mem_Free releases a block from any of the entry points, whichever thread made
/// it; every block of the family's libraries must be released through it (never the runtime's
/// free), which on Windows also keeps blocks inside the one module that made them.
///
/// The pool: each thread carves blocks one after the other from chunks of its own, so that blocks
/// made together lie together; freed blocks are reused a chunk at a time (last freed first), and a
/// chunk whose blocks have all come back is carved afresh. A block freed by another thread goes
/// back to its owner. When a thread ends, its blocks wait for the next new thread. The pool keeps
/// its memory for later small blocks rather than returning it to the system. Builds with the
/// address sanitizer leave the pool out (the sanitizer must see every block); setting the
/// environment variable ZUL_MEM_POOL=off before the first allocation does the same at run time
/// (for other memory checkers, and for comparisons).
///
/// Test hook: mem_TestFailAllocation(n) makes the n-th allocation from now fail as if the heap were
/// exhausted (1 = the very next one). The count is per process and atomic, so allocations on other
/// threads count too.
///
/// Thread rule: every function may be called from any thread at any time; the pool's shared parts
/// are locked or atomic, and mem_ThreadObject serves the calling thread only. The thrower and the
/// failure hook are process-wide: setting either affects the allocations of every thread.
#ifndef MEM_MEMORY_H
#define MEM_MEMORY_H

#include <cstddef>

#include "zul_CoreExport.h"

/// Ordinary throwing allocation: at least `size` bytes (a size of 0 gives a unique block).
[[nodiscard]] ZUL_CORE_API void* mem_OperatorNewThrow(size_t size);
/// Throwing allocation meant for small, frequent objects (a few dozen bytes).
[[nodiscard]] ZUL_CORE_API void* mem_OperatorNewTinyThrow(size_t size);
/// Throwing allocation used where the global operator new is meant.
[[nodiscard]] ZUL_CORE_API void* mem_OperatorNewThrowBuiltin(size_t size);

/// Runtime semantics: null on failure; mem_Realloc(nullptr, n) allocates, mem_Realloc(p, 0) frees p
/// and answers null; on failure the old block is left as it was. A block grown by small steps may
/// be given more room than asked for, so that the next steps need not move it.
///@{
[[nodiscard]] ZUL_CORE_API void* mem_Malloc(size_t size);
[[nodiscard]] ZUL_CORE_API void* mem_Realloc(void* p, size_t size);
///@}
/// Frees a block from any allocation function above; null is ignored.
ZUL_CORE_API void mem_Free(void* p);

/// The bytes that a block asked for with `size` really gives (at least `size`): buffers that
/// grow ask for this much and use all of it.
ZUL_CORE_API size_t mem_GoodSize(size_t size);

/// Entry point called at start-up by the upper library; does nothing.
ZUL_CORE_API void mem_formalize();

/// The calling thread's object for `tag` (any address that stands for one kind of object): made
/// by `make` at the thread's first request, destroyed by `destroy` when the thread ends (the
/// thread that ends the process keeps its objects to the end). `make` may throw; nothing is then
/// kept.
ZUL_CORE_API void* mem_ThreadObject(const void* tag, void* (*make)(), void (*destroy)(void*));

/// Figures of the small-block pool (diagnostics and tests).
struct mem_PoolStatistics {
    int enabled;             ///< 1 when small blocks come from the pool
    size_t reservedBytes;    ///< address space reserved for it
    size_t carvedBytes;      ///< of which handed out to threads, in chunks
    int threadStates;        ///< per-thread states made so far
    int idleThreadStates;    ///< of which waiting for a new thread
};
ZUL_CORE_API void mem_GetPoolStatistics(mem_PoolStatistics* out);

/// Called with the requested size when a throwing allocation fails; must throw.
typedef void (*mem_OutOfMemoryThrower)(size_t requested);
/// Installs a thrower (null restores the default std::bad_alloc) and returns the previous one.
ZUL_CORE_API mem_OutOfMemoryThrower mem_SetOutOfMemoryThrower(mem_OutOfMemoryThrower t);
ZUL_CORE_API mem_OutOfMemoryThrower mem_GetOutOfMemoryThrower();

/// Arms the failure hook: the n-th allocation from now fails; n <= 0 disarms.
ZUL_CORE_API void mem_TestFailAllocation(long n);
/// Allocations still to go before the armed failure (0 when disarmed or already fired). Lets a
/// test tell whether an operation ran into the failure or finished before it.
ZUL_CORE_API long mem_TestFailAllocationPending();

#endif

// The memory layer: every heap block of both libraries comes from here.
//
// The layer forwards to the runtime heap (malloc/realloc/free). The throwing entry points never
// return null: on exhaustion they call the installed out-of-memory thrower (the upper library
// installs one that raises its own exception) and, when none is installed or it returns, throw
// std::bad_alloc. mem_Free releases a block from any of the entry points.
//
// Test hook: mem_TestFailAllocation(n) makes the n-th allocation from now fail as if the heap were
// exhausted (1 = the very next one). The count is per process and atomic, so allocations on other
// threads count too.
#ifndef MEM_MEMORY_H
#define MEM_MEMORY_H

#include <cstddef>

#include "zul_CoreExport.h"

// Ordinary throwing allocation: at least `size` bytes (a size of 0 gives a unique block).
[[nodiscard]] ZUL_CORE_API void* mem_OperatorNewThrow(size_t size);
// Throwing allocation meant for small, frequent objects (a few dozen bytes).
[[nodiscard]] ZUL_CORE_API void* mem_OperatorNewTinyThrow(size_t size);
// Throwing allocation used where the global operator new is meant.
[[nodiscard]] ZUL_CORE_API void* mem_OperatorNewThrowBuiltin(size_t size);

// Runtime semantics: null on failure; mem_Realloc(nullptr, n) allocates; on failure the old block
// is left as it was.
[[nodiscard]] ZUL_CORE_API void* mem_Malloc(size_t size);
[[nodiscard]] ZUL_CORE_API void* mem_Realloc(void* p, size_t size);
// Frees a block from any allocation function above; null is ignored.
ZUL_CORE_API void mem_Free(void* p);

// Entry point called at start-up by the upper library; does nothing.
ZUL_CORE_API void mem_formalize();

// Called with the requested size when a throwing allocation fails; must throw.
typedef void (*mem_OutOfMemoryThrower)(size_t requested);
// Installs a thrower (null restores the default std::bad_alloc) and returns the previous one.
ZUL_CORE_API mem_OutOfMemoryThrower mem_SetOutOfMemoryThrower(mem_OutOfMemoryThrower t);
ZUL_CORE_API mem_OutOfMemoryThrower mem_GetOutOfMemoryThrower();

// Arms the failure hook: the n-th allocation from now fails; n <= 0 disarms.
ZUL_CORE_API void mem_TestFailAllocation(long n);
// Allocations still to go before the armed failure (0 when disarmed or already fired). Lets a
// test tell whether an operation ran into the failure or finished before it.
ZUL_CORE_API long mem_TestFailAllocationPending();

#endif

/// @file
/// Raising out-of-memory from code that allocates with mem_Malloc / mem_Realloc (which answer
/// null, as the runtime does) but must not return on failure.
/// Thread rule: any thread; it calls the thrower installed at the moment of the call.
#ifndef MEM_OUTOFMEMORY_H
#define MEM_OUTOFMEMORY_H

#include <cstddef>

#include "zul_CoreExport.h"

/// Calls the installed out-of-memory thrower with the requested size; throws std::bad_alloc when
/// none is installed or it returns. Never returns.
[[noreturn]] ZUL_CORE_API void mem_ThrowOutOfMemory(size_t requested);

#endif

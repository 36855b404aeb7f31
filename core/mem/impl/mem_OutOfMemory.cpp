#include "mem/mem_OutOfMemory.h"

#include <new>

#include "mem/mem_Memory.h"

void mem_ThrowOutOfMemory(size_t requested)
{
    if (mem_OutOfMemoryThrower thrower = mem_GetOutOfMemoryThrower())
        thrower(requested);
    throw std::bad_alloc();
}

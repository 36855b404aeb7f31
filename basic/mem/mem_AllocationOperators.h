/// @file
/// Class-level allocation operators that route every heap object of the library to the lower
/// library's memory layer. Deriving from one of these empty bases is all a class needs to do.
/// Thread rule: the memory layer's (mem/mem_Memory.h): any thread.
#ifndef MEM_ALLOCATIONOPERATORS_H
#define MEM_ALLOCATIONOPERATORS_H

#include <cstddef>
#include <new>

#include "mem/mem_Memory.h"

/// For classes allocated singly or in arrays (exceptions and most library objects).
class mem_AllocationOperators {
public:
    static void* operator new(size_t size) { return mem_OperatorNewThrow(size); }
    static void* operator new[](size_t size) { return mem_OperatorNewThrow(size); }
    static void operator delete(void* p) { mem_Free(p); }
    static void operator delete[](void* p) { mem_Free(p); }
    /// Placement forms, so that containers can construct in memory they manage.
    ///@{
    static void* operator new(size_t, void* where) noexcept { return where; }
    static void operator delete(void*, void*) noexcept {}
    ///@}
};

/// For small, frequent objects (string representations, list nodes, small handles).
class mem_AllocationOperatorsTiny {
public:
    static void* operator new(size_t size) { return mem_OperatorNewTinyThrow(size); }
    static void* operator new[](size_t size) { return mem_OperatorNewTinyThrow(size); }
    static void operator delete(void* p) { mem_Free(p); }
    static void operator delete[](void* p) { mem_Free(p); }
    static void* operator new(size_t, void* where) noexcept { return where; }
    static void operator delete(void*, void*) noexcept {}
};

#endif

// Directory enumeration and free space (one definition per platform).
#ifndef UTL_DIRLISTING_H
#define UTL_DIRLISTING_H

#include <cstdint>

#include "cow/cow_String.h"

namespace utl_DirListing {

typedef void (*EntryFn)(void* context, const char* name, bool isDirectory);
// Calls fn for every entry of the directory, "." and ".." included; nothing when it cannot be read.
void ForEachEntry(const cow_String& directory, EntryFn fn, void* context);
// Free bytes in total and for the caller; false with the system error code on failure.
bool FreeSpace(const cow_String& root, uint64_t& totalFree, uint64_t& callerFree, uint32_t& error);

}  // namespace utl_DirListing

#endif

#include "utl/impl/utl_DirListing.h"

#include <windows.h>

namespace utl_DirListing {

void ForEachEntry(const cow_String& directory, EntryFn fn, void* context)
{
    cow_String pattern(directory);
    pattern += "\\*";
    WIN32_FIND_DATAA data;
    HANDLE search = FindFirstFileA(pattern.c_str(), &data);
    if (search == INVALID_HANDLE_VALUE || search == nullptr)
        return;
    do {
        fn(context, data.cFileName, (data.dwFileAttributes & 0x10) != 0);
    } while (FindNextFileA(search, &data));
    FindClose(search);
}

bool FreeSpace(const cow_String& root, uint64_t& totalFree, uint64_t& callerFree, uint32_t& error)
{
    ULARGE_INTEGER caller, total, free;
    if (!GetDiskFreeSpaceExA(root.c_str(), &caller, &total, &free)) {
        error = GetLastError();
        return false;
    }
    totalFree = free.QuadPart;
    callerFree = caller.QuadPart;
    return true;
}

}  // namespace utl_DirListing

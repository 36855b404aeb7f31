// The operating-system calls under utl_File (one definition per platform). Each answers true on
// success and otherwise leaves the system's error code in `error`.
#ifndef UTL_FILESYSTEM_H
#define UTL_FILESYSTEM_H

#include <cstdint>

#include "cow/cow_String.h"

namespace utl_FileSystem {

// access: 0 read (must exist), 1 update (must exist), 2 write (created anew).
// sharing: what other openers are granted (advisory on POSIX systems).
enum Share { ShareRead, ShareReadWrite };

bool Open(const cow_String& name, int access, Share share, intptr_t& handle, uint32_t& error);
// The error of a failed read or update open means "no such file" (not a missing directory).
bool IsNoSuchFile(uint32_t error, const cow_String& name);
bool Close(intptr_t handle, uint32_t& error);
bool SetPosition(intptr_t handle, int64_t position, uint32_t& error);
bool GetPosition(intptr_t handle, int64_t& position, uint32_t& error);
bool Read(intptr_t handle, char* buffer, int count, int& done, uint32_t& error);
bool Write(intptr_t handle, const char* buffer, int count, int& done, uint32_t& error);
bool Flush(intptr_t handle, uint32_t& error);
bool Size(intptr_t handle, int64_t& size, uint32_t& error);
bool SetEnd(intptr_t handle, uint32_t& error);

}  // namespace utl_FileSystem

#endif

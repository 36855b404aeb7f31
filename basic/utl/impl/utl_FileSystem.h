// The operating-system calls under utl_File (one definition per platform). Each answers true on
// success and otherwise leaves the system's error code in `error`.
#ifndef UTL_FILESYSTEM_H
#define UTL_FILESYSTEM_H

#include <cstdint>

#include "cow/cow_String.h"
#include "utl/utl_File.h"

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
// Makes the current position the end of the file; a growth allocates the new bytes (where the
// system allows) and, when it fails, leaves the old size.
bool SetEnd(intptr_t handle, uint32_t& error);
// The error means no room: a full disk, a quota or a file-size limit.
bool IsDiskFull(uint32_t error);

// The test hook (utl_FileTestFaults): true when this call of `kind` must fail, with the code to
// fail with in `error`. Defined once, in the portable part.
bool FaultFires(utl_FileCallEnm kind, uint32_t& error);

}  // namespace utl_FileSystem

#endif

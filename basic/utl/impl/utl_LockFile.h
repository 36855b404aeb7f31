// Small operating-system helpers of the container file (one definition per platform).
#ifndef UTL_LOCKFILE_H
#define UTL_LOCKFILE_H

#include "cow/cow_String.h"
#include "sys/impl/sys_Os.h"

namespace utl_LockFile {

// Creates the file exclusively (readable and writable), writes `text` into it and closes it:
// true when this call made it (a descriptor above 0 came back). The file's existence is the
// lock: a write that fails leaves it short or empty, and held all the same.
bool Create(const cow_String& path, const cow_String& text);
// Up to the first 1024 bytes of the file: 1 when read, 0 when there is no such file, -1 when it
// exists but cannot be read.
int Read(const cow_String& path, cow_String& text);
// True when this call removed the file.
bool Remove(const cow_String& path);
inline int ProcessId() { return static_cast<int>(sys_ProcessId()); }

}  // namespace utl_LockFile

#endif

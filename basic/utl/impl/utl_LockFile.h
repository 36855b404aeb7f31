// Reading the container's lock file (one definition per platform). The lock is made and removed
// through the shared layer (sys_CreateExclusive, sys_RemoveFile): the file's existence is the
// lock.
#ifndef UTL_LOCKFILE_H
#define UTL_LOCKFILE_H

#include "cow/cow_String.h"
#include "sys/impl/sys_Os.h"

namespace utl_LockFile {

// Up to the first 1024 bytes of the file: 1 when read, 0 when there is no such file, -1 when it
// exists but cannot be read.
int Read(const cow_String& path, cow_String& text);

}  // namespace utl_LockFile

#endif

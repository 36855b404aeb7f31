/// @file
/// Byte-range locks in the manner of the Unix flock call, and inheritance control of descriptors.
///
/// utl_flock locks or unlocks the first 0xFFFF0000 bytes of the file behind a runtime descriptor:
/// LockFileEx/UnlockFileEx on Windows, fcntl record locks on the same range on POSIX systems.
/// POSIX record locks belong to the process: they exclude other processes only, and closing any
/// descriptor of the file releases them. A shared lock needs a descriptor open for reading, an
/// exclusive one a descriptor open for writing.
///
/// Thread rule: any thread. A POSIX lock does not exclude the process's own threads (nor its other
/// descriptors of the file); a Windows lock excludes every other handle, in this process too.
/// Between the threads of one process, use a mutex.
#ifndef UTL_FILELOCK_H
#define UTL_FILELOCK_H

#include "zul_BasicExport.h"

/// Operation codes of utl_flock: one of shared or exclusive, optionally with no-wait; or unlock.
enum utl_FlockOperationEnm {
    utl_FlockShared = 1,
    utl_FlockExclusive = 2,
    utl_FlockNoWait = 4,
    utl_FlockUnlock = 8,
};

/// 0 on success. -1 on failure with errno set: 22 (EINVAL) for an operation other than 1, 2, 5, 6
/// and 8; otherwise the system's error code as it is (GetLastError on Windows, errno on POSIX).
ZUL_BASIC_API int utl_flock(int fd, int operation);

/// Keeps the descriptor's handle from being inherited by child processes; false when the
/// descriptor has no handle or the call fails.
ZUL_BASIC_API bool utl_noInheritFile(int fd);
/// The same for a socket; false for -1.
ZUL_BASIC_API bool utl_noInheritSocket(int socket);

#endif

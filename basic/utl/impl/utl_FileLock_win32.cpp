#include "utl/utl_FileLock.h"

#include <winsock2.h>
#include <cerrno>
#include <io.h>
#include <windows.h>

namespace {

const DWORD kLockedBytes = 0xFFFF0000u;

HANDLE HandleOf(int fd)
{
    return reinterpret_cast<HANDLE>(_get_osfhandle(fd));
}

}  // namespace

int utl_flock(int fd, int operation)
{
    DWORD flags = 0;
    switch (operation) {
    case 1: flags = 0; break;
    case 2: flags = LOCKFILE_EXCLUSIVE_LOCK; break;
    case 5: flags = LOCKFILE_FAIL_IMMEDIATELY; break;
    case 6: flags = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY; break;
    case 8: break;
    default: errno = EINVAL; return -1;
    }
    const HANDLE h = HandleOf(fd);
    OVERLAPPED at = {};
    const BOOL done = operation == 8 ? UnlockFileEx(h, 0, kLockedBytes, 0, &at)
                                     : LockFileEx(h, flags, 0, kLockedBytes, 0, &at);
    if (done)
        return 0;
    errno = static_cast<int>(GetLastError());  // the system's code, as it is
    return -1;
}

bool utl_noInheritFile(int fd)
{
    const HANDLE h = HandleOf(fd);
    return h != INVALID_HANDLE_VALUE && SetHandleInformation(h, HANDLE_FLAG_INHERIT, 0) != 0;
}

bool utl_noInheritSocket(int socket)
{
    return socket != -1 &&
           SetHandleInformation(reinterpret_cast<HANDLE>(static_cast<intptr_t>(socket)), HANDLE_FLAG_INHERIT, 0) != 0;
}

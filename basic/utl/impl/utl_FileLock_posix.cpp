#include "utl/utl_FileLock.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {

const off_t kLockedBytes = static_cast<off_t>(0xFFFF0000u);

bool SetCloseOnExec(int fd)
{
    const int flags = fcntl(fd, F_GETFD);
    return flags != -1 && fcntl(fd, F_SETFD, flags | FD_CLOEXEC) != -1;
}

}  // namespace

int utl_flock(int fd, int operation)
{
    struct flock range = {};
    range.l_whence = SEEK_SET;
    range.l_start = 0;
    range.l_len = kLockedBytes;
    int command = F_SETLKW;
    switch (operation) {
    case 1: range.l_type = F_RDLCK; break;
    case 2: range.l_type = F_WRLCK; break;
    case 5: range.l_type = F_RDLCK; command = F_SETLK; break;
    case 6: range.l_type = F_WRLCK; command = F_SETLK; break;
    case 8: range.l_type = F_UNLCK; command = F_SETLK; break;
    default: errno = EINVAL; return -1;
    }
    int rc;
    do {
        rc = fcntl(fd, command, &range);
    } while (rc == -1 && errno == EINTR && command == F_SETLKW);
    return rc == -1 ? -1 : 0;
}

bool utl_noInheritFile(int fd)
{
    return fd >= 0 && SetCloseOnExec(fd);
}

bool utl_noInheritSocket(int socket)
{
    return socket != -1 && SetCloseOnExec(socket);
}

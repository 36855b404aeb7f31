#include "utl/impl/utl_LockFile.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace utl_LockFile {

int Read(const cow_String& path, cow_String& text)
{
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return errno == ENOENT || errno == ENOTDIR ? 0 : -1;
    char buffer[1024];
    ssize_t n;
    do {
        n = ::read(fd, buffer, sizeof(buffer));
    } while (n < 0 && errno == EINTR);
    ::close(fd);
    if (n < 0)
        return -1;
    text = cow_String(buffer, static_cast<int>(n));
    return 1;
}

}  // namespace utl_LockFile

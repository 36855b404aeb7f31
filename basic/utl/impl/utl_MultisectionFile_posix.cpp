#include "utl/impl/utl_LockFile.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace utl_LockFile {

bool Create(const cow_String& path, const cow_String& text)
{
    // Readable, so that others can tell who holds the lock.
    const int fd = ::open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0644);
    if (fd <= 0)
        return false;
    for (int done = 0; done < text.Length();) {
        const ssize_t n = ::write(fd, text.c_str() + done, static_cast<size_t>(text.Length() - done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        done += static_cast<int>(n);
    }
    ::close(fd);
    return true;
}

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

bool Remove(const cow_String& path)
{
    return ::unlink(path.c_str()) == 0;
}

}  // namespace utl_LockFile

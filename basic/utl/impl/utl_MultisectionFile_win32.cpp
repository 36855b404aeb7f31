#include "utl/impl/utl_LockFile.h"

#include <cerrno>
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

namespace utl_LockFile {

int Read(const cow_String& path, cow_String& text)
{
    const int fd = _open(path.c_str(), _O_RDONLY | _O_BINARY);
    if (fd < 0)
        return errno == ENOENT ? 0 : -1;
    char buffer[1024];
    const int n = _read(fd, buffer, sizeof(buffer));
    _close(fd);
    if (n < 0)
        return -1;
    text = cow_String(buffer, n);
    return 1;
}

}  // namespace utl_LockFile

#include "utl/impl/utl_LockFile.h"

#include <cerrno>
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

namespace utl_LockFile {

bool Create(const cow_String& path, const cow_String& text)
{
    const int fd = _open(path.c_str(), _O_CREAT | _O_EXCL | _O_WRONLY | _O_BINARY, _S_IWRITE);
    if (fd <= 0)
        return false;
    for (int done = 0; done < text.Length();) {
        const int n = _write(fd, text.c_str() + done, static_cast<unsigned>(text.Length() - done));
        if (n <= 0)
            break;
        done += n;
    }
    _close(fd);
    return true;
}

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

bool Remove(const cow_String& path)
{
    return _unlink(path.c_str()) == 0;
}

}  // namespace utl_LockFile

#include "utl/impl/utl_BinStreamIo.h"

#include <cerrno>
#include <fcntl.h>
#include <io.h>

int utl_BinStreamSetBinary(int fd)
{
    return _setmode(fd, _O_BINARY) == -1 ? errno : 0;
}

int utl_BinStreamWriteFd(int fd, const char* data, int count)
{
    return _write(fd, data, static_cast<unsigned>(count));
}

int utl_BinStreamReadFd(int fd, char* data, int count)
{
    return _read(fd, data, static_cast<unsigned>(count));
}

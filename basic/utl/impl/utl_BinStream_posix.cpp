#include "utl/impl/utl_BinStreamIo.h"

#include <unistd.h>

// POSIX descriptors have no text mode: the switch cannot fail.
int utl_BinStreamSetBinary(int)
{
    return 0;
}

int utl_BinStreamWriteFd(int fd, const char* data, int count)
{
    return static_cast<int>(::write(fd, data, static_cast<size_t>(count)));
}

int utl_BinStreamReadFd(int fd, char* data, int count)
{
    return static_cast<int>(::read(fd, data, static_cast<size_t>(count)));
}

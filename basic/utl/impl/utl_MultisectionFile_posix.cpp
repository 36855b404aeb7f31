#include "utl/impl/utl_LockFile.h"

#include <fcntl.h>
#include <time.h>
#include <unistd.h>

namespace utl_LockFile {

bool Create(const cow_String& path)
{
    const int fd = ::open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY, 0200);
    if (fd <= 0)
        return false;
    ::close(fd);
    return true;
}

void Remove(const cow_String& path)
{
    ::unlink(path.c_str());
}

int ProcessId()
{
    return static_cast<int>(::getpid());
}

void SleepMilliseconds(int ms)
{
    struct timespec t = {ms / 1000, (ms % 1000) * 1000000L};
    while (::nanosleep(&t, &t) != 0) {
    }
}

}  // namespace utl_LockFile

#include "utl/impl/utl_LockFile.h"

#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <sys/stat.h>
#include <windows.h>

namespace utl_LockFile {

bool Create(const cow_String& path)
{
    const int fd = _open(path.c_str(), _O_CREAT | _O_EXCL, _S_IWRITE);
    if (fd <= 0)
        return false;
    _close(fd);
    return true;
}

void Remove(const cow_String& path)
{
    _unlink(path.c_str());
}

int ProcessId()
{
    return _getpid();
}

void SleepMilliseconds(int ms)
{
    Sleep(static_cast<DWORD>(ms));
}

}  // namespace utl_LockFile

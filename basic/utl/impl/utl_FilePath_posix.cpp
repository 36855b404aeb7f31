#include "utl/impl/utl_FilePathPlatform.h"

#include <fcntl.h>
#include <limits.h>
#include <unistd.h>

namespace utl_FilePathPlatform {

const char kNativeSeparator = '/';
const bool kHasDrives = false;

cow_String CurrentDirectory()
{
    char buffer[PATH_MAX];
    return getcwd(buffer, sizeof(buffer)) ? cow_String(buffer) : cow_String();
}

cow_String DriveCurrentDirectory(char)
{
    return CurrentDirectory();
}

bool CanRead(const cow_String& path)
{
    return access(path.c_str(), R_OK) == 0;
}

bool CanWrite(const cow_String& path)
{
    return access(path.c_str(), W_OK) == 0;
}

bool CanCreate(const cow_String& path)
{
    const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600);
    if (fd < 0)
        return false;
    close(fd);
    unlink(path.c_str());
    return true;
}

// POSIX marks executables by permission, not by name.
bool IsExecutable(const cow_String& path, const cow_String&)
{
    return access(path.c_str(), X_OK) == 0 && CanRead(path);
}

}  // namespace utl_FilePathPlatform

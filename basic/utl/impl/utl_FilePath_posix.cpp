#include "utl/impl/utl_FilePathPlatform.h"
#include "utl/utl_HostInfo.h"

#include <unistd.h>

namespace utl_FilePathPlatform {

const char kNativeSeparator = '/';
const bool kHasDrives = false;

cow_String DriveCurrentDirectory(char)
{
    return utl_getcwd();
}

bool CanRead(const cow_String& path)
{
    return access(path.c_str(), R_OK) == 0;
}

bool CanWrite(const cow_String& path)
{
    return access(path.c_str(), W_OK) == 0;
}

// POSIX marks executables by permission, not by name.
bool IsExecutable(const cow_String& path, const cow_String&)
{
    return access(path.c_str(), X_OK) == 0 && CanRead(path);
}

}  // namespace utl_FilePathPlatform

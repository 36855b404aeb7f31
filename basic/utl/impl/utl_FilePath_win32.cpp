#include "utl/impl/utl_FilePathPlatform.h"

#include <direct.h>
#include <io.h>
#include <windows.h>

namespace utl_FilePathPlatform {

const char kNativeSeparator = '\\';
const bool kHasDrives = true;

cow_String DriveCurrentDirectory(char drive)
{
    char buffer[MAX_PATH + 1];
    const int number = (drive | 0x20) - 'a' + 1;
    return _getdcwd(number, buffer, sizeof(buffer)) ? cow_String(buffer) : cow_String();
}

bool CanRead(const cow_String& path)
{
    return _access(path.c_str(), 4) == 0;
}

bool CanWrite(const cow_String& path)
{
    return _access(path.c_str(), 2) == 0;
}

// ".exe" or ".bat" exactly (case matters), and readable.
bool IsExecutable(const cow_String& path, const cow_String& extension)
{
    return (extension == ".exe" || extension == ".bat") && CanRead(path);
}

}  // namespace utl_FilePathPlatform

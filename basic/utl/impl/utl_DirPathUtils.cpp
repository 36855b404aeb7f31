#include "utl/utl_DirPathUtils.h"

#include "utl/utl_Stat.h"

bool utl_DirPathUtils::CheckDirectory(const cow_String& path)
{
    return utl_Stat(path).IsDirectory();
}

cow_String utl_DirPathUtils::TrimSeparator(const cow_String& path)
{
    const int n = path.Length();
    if (n > 0 && path[n - 1] == UTL_NATIVE_SEPARATOR)
        return path.Substr(0, n - 1);
    return path;
}

cow_String utl_DirPathUtils::AddSeparator(const cow_String& path)
{
    const int n = path.Length();
    if (n > 0 && path[n - 1] == UTL_NATIVE_SEPARATOR)
        return path;
    cow_String out(path);
    out += UTL_NATIVE_SEPARATOR;
    return out;
}

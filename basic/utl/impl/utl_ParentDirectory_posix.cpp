#include "utl/impl/utl_ParentDirectory.h"

#include <string>
#include <sys/stat.h>

bool utl_ParentDirectoryExists(const cow_String& path)
{
    std::string parent(path.c_str());
    while (parent.size() > 1 && parent.back() == '/')
        parent.pop_back();
    const size_t slash = parent.rfind('/');
    if (slash == std::string::npos)
        return true;
    parent.resize(slash == 0 ? 1 : slash);
    struct stat info;
    return ::stat(parent.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

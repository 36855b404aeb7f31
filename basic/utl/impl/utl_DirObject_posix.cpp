#include "utl/impl/utl_DirListing.h"

#include <cerrno>
#include <dirent.h>
#include <string>
#include <sys/stat.h>
#include <sys/statvfs.h>

namespace utl_DirListing {

void ForEachEntry(const cow_String& directory, EntryFn fn, void* context)
{
    DIR* dir = ::opendir(directory.c_str());
    if (!dir)
        return;
    std::string base(directory.c_str());
    if (!base.empty() && base.back() != '/')
        base.push_back('/');
    while (const dirent* entry = ::readdir(dir)) {
        struct stat info;
        const bool isDir = ::stat((base + entry->d_name).c_str(), &info) == 0 && S_ISDIR(info.st_mode);
        fn(context, entry->d_name, isDir);
    }
    ::closedir(dir);
}

bool FreeSpace(const cow_String& root, uint64_t& totalFree, uint64_t& callerFree, uint32_t& error)
{
    struct statvfs info;
    if (::statvfs(root.c_str(), &info) != 0) {
        error = static_cast<uint32_t>(errno);
        return false;
    }
    totalFree = static_cast<uint64_t>(info.f_bfree) * info.f_frsize;
    callerFree = static_cast<uint64_t>(info.f_bavail) * info.f_frsize;
    return true;
}

}  // namespace utl_DirListing

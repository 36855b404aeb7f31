#include "utl/utl_Stat.h"
#include "utl/impl/utl_ParentDirectory.h"

#include <cerrno>
#include <cstdint>
#include <sys/stat.h>

namespace {

// The same rounding as the Windows build: to the nearest second.
int64_t Seconds(const struct timespec& t)
{
    return static_cast<int64_t>(static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) / 1e9 + 0.5);
}

// One reader for both stat and fstat results.
void Fill(const struct stat& info, uint64_t& size, uint64_t& index, uint32_t& links, int64_t& access,
                 int64_t& write, int64_t& creation, uint8_t& isDir)
{
    size = static_cast<uint64_t>(info.st_size);
    index = static_cast<uint64_t>(info.st_ino);
    links = static_cast<uint32_t>(info.st_nlink);
    access = Seconds(info.st_atim);
    write = Seconds(info.st_mtim);
    creation = Seconds(info.st_ctim);
    isDir = S_ISDIR(info.st_mode) ? 1 : 0;
}

}  // namespace

void utl_Stat::ReadPath(const cow_String& path)
{
    struct stat info;
    if (::stat(path.c_str(), &info) != 0) {
        const int e = errno;
        m_error = omi_SystemErrorCode(static_cast<uint32_t>(e));
        if (e == ENOENT && utl_ParentDirectoryExists(path))
            return;  // not found is an answer
        Raise(m_error);
    }
    Fill(info, m_size, m_fileIndex, m_links, m_accessTime, m_writeTime, m_creationTime, m_isDir);
    m_found = 1;
}

void utl_Stat::ReadDescriptor(int descriptor)
{
    struct stat info;
    if (::fstat(descriptor, &info) != 0) {
        m_error = omi_SystemErrorCode(static_cast<uint32_t>(errno));
        Raise(m_error);
    }
    Fill(info, m_size, m_fileIndex, m_links, m_accessTime, m_writeTime, m_creationTime, m_isDir);
    m_found = 1;
}

void utl_Stat::ReadHandle(void* handle)
{
    ReadDescriptor(static_cast<int>(reinterpret_cast<intptr_t>(handle)));
}

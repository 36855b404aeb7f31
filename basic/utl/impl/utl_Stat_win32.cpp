#include "utl/utl_Stat.h"

#include <cerrno>
#include <io.h>
#include <windows.h>

namespace {

uint64_t Ticks(const FILETIME& t)
{
    return (static_cast<uint64_t>(t.dwHighDateTime) << 32) | t.dwLowDateTime;
}

}  // namespace

void utl_Stat::ReadHandle(void* handle)
{
    BY_HANDLE_FILE_INFORMATION info;
    if (!GetFileInformationByHandle(static_cast<HANDLE>(handle), &info)) {
        m_error = omi_SystemErrorCode(static_cast<uint32_t>(GetLastError()));
        Raise(m_error);
    }
    m_isDir = (info.dwFileAttributes & 0x10) ? 1 : 0;
    m_isNormal = (info.dwFileAttributes & 0x80) ? 1 : 0;
    m_size = (static_cast<uint64_t>(info.nFileSizeHigh) << 32) | info.nFileSizeLow;
    m_fileIndex = (static_cast<uint64_t>(info.nFileIndexHigh) << 32) | info.nFileIndexLow;
    m_links = info.nNumberOfLinks;
    m_accessTime = SecondsFromFileTime(Ticks(info.ftLastAccessTime));
    m_writeTime = SecondsFromFileTime(Ticks(info.ftLastWriteTime));
    m_creationTime = SecondsFromFileTime(Ticks(info.ftCreationTime));
    m_found = 1;
}

void utl_Stat::ReadPath(const cow_String& path)
{
    HANDLE h = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                           FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (h == INVALID_HANDLE_VALUE) {
        const DWORD e = GetLastError();
        m_error = omi_SystemErrorCode(static_cast<uint32_t>(e));
        if (e == ERROR_FILE_NOT_FOUND)
            return;  // not found is an answer
        Raise(m_error);
    }
    try {
        ReadHandle(h);
    } catch (...) {
        CloseHandle(h);
        throw;
    }
    CloseHandle(h);
}

void utl_Stat::ReadDescriptor(int descriptor)
{
    const intptr_t handle = _get_osfhandle(descriptor);
    if (handle == -1) {
        m_error = omi_SystemErrorCode::FromErrno(EBADF);
        Raise(m_error);
    }
    ReadHandle(reinterpret_cast<void*>(handle));
}

#include "utl/impl/utl_FileSystem.h"

#include <windows.h>

#ifndef ERROR_DISK_QUOTA_EXCEEDED
#define ERROR_DISK_QUOTA_EXCEEDED 1295L  // not in every MinGW header set
#endif

namespace utl_FileSystem {

namespace {

HANDLE H(intptr_t handle)
{
    return reinterpret_cast<HANDLE>(handle);
}

bool Fail(uint32_t& error)
{
    error = GetLastError();
    return false;
}

// SetFilePointer with the 64-bit value split in halves; all ones in the low half is an error
// only when the thread's last error says so.
bool Move(intptr_t handle, int64_t distance, DWORD method, int64_t* result, uint32_t& error)
{
    LONG high = static_cast<LONG>(distance >> 32);
    SetLastError(NO_ERROR);
    const DWORD low = SetFilePointer(H(handle), static_cast<LONG>(distance & 0xFFFFFFFF), &high, method);
    if (low == INVALID_SET_FILE_POINTER && GetLastError() != NO_ERROR)
        return Fail(error);
    if (result)
        *result = (static_cast<int64_t>(high) << 32) | low;
    return true;
}

}  // namespace

bool Open(const cow_String& name, int access, Share share, intptr_t& handle, uint32_t& error)
{
    const DWORD rights = access == 0 ? GENERIC_READ : (GENERIC_READ | GENERIC_WRITE);
    const DWORD sharing = share == ShareRead ? FILE_SHARE_READ : (FILE_SHARE_READ | FILE_SHARE_WRITE);
    const DWORD disposition = access == 2 ? CREATE_ALWAYS : OPEN_EXISTING;
    HANDLE h = CreateFileA(name.c_str(), rights, sharing, nullptr, disposition,
                           FILE_ATTRIBUTE_NORMAL | FILE_FLAG_RANDOM_ACCESS, nullptr);
    if (h == INVALID_HANDLE_VALUE)
        return Fail(error);
    handle = reinterpret_cast<intptr_t>(h);
    return true;
}

bool IsNoSuchFile(uint32_t error, const cow_String&)
{
    return error == ERROR_FILE_NOT_FOUND;
}

bool Close(intptr_t handle, uint32_t& error)
{
    return CloseHandle(H(handle)) || Fail(error);
}

bool SetPosition(intptr_t handle, int64_t position, uint32_t& error)
{
    return Move(handle, position, FILE_BEGIN, nullptr, error);
}

bool GetPosition(intptr_t handle, int64_t& position, uint32_t& error)
{
    return Move(handle, 0, FILE_CURRENT, &position, error);
}

bool Read(intptr_t handle, char* buffer, int count, int& done, uint32_t& error)
{
    DWORD n = 0;
    if (!ReadFile(H(handle), buffer, static_cast<DWORD>(count), &n, nullptr))
        return Fail(error);
    done = static_cast<int>(n);
    return true;
}

bool Write(intptr_t handle, const char* buffer, int count, int& done, uint32_t& error)
{
    DWORD n = 0;
    if (!WriteFile(H(handle), buffer, static_cast<DWORD>(count), &n, nullptr))
        return Fail(error);
    done = static_cast<int>(n);
    return true;
}

bool Flush(intptr_t handle, uint32_t& error)
{
    return FlushFileBuffers(H(handle)) || Fail(error);
}

bool Size(intptr_t handle, int64_t& size, uint32_t& error)
{
    DWORD high = 0;
    SetLastError(NO_ERROR);
    const DWORD low = GetFileSize(H(handle), &high);
    if (low == INVALID_FILE_SIZE && GetLastError() != NO_ERROR)
        return Fail(error);
    size = (static_cast<int64_t>(high) << 32) | low;
    return true;
}

// Setting the end of file allocates the new clusters (the file is not sparse), so a full disk
// fails here.
bool SetEnd(intptr_t handle, uint32_t& error)
{
    return SetEndOfFile(H(handle)) || Fail(error);
}

bool IsDiskFull(uint32_t error)
{
    return error == ERROR_DISK_FULL || error == ERROR_HANDLE_DISK_FULL || error == ERROR_DISK_QUOTA_EXCEEDED ||
           error == ERROR_FILE_TOO_LARGE;
}

}  // namespace utl_FileSystem

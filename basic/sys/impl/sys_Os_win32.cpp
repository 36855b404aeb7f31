#include "sys/impl/sys_Os.h"

#include <cstdio>
#include <cstdlib>
#include <direct.h>
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <winsock2.h>
#include <windows.h>

namespace {

bool CreationTime(HANDLE process, unsigned long long& time)
{
    FILETIME created, exited, kernel, user;
    if (!GetProcessTimes(process, &created, &exited, &kernel, &user))
        return false;
    time = (static_cast<unsigned long long>(created.dwHighDateTime) << 32) | created.dwLowDateTime;
    return true;
}

}  // namespace

void sys_SleepMilliseconds(uint32_t milliseconds)
{
    Sleep(milliseconds == INFINITE ? INFINITE - 1 : static_cast<DWORD>(milliseconds));
}

uint32_t sys_ProcessId()
{
    return static_cast<uint32_t>(GetCurrentProcessId());
}

bool sys_ProcessStartTime(uint32_t processId, char (&startTime)[sys_kStartTimeSize], uint32_t& error)
{
    HANDLE process = OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId);
    if (!process) {
        error = GetLastError();
        return false;
    }
    unsigned long long time = 0;
    const bool ok = CreationTime(process, time);
    if (!ok)
        error = GetLastError();
    CloseHandle(process);
    if (ok)
        std::snprintf(startTime, sys_kStartTimeSize, "%llu", time);
    return ok;
}

bool sys_ProcessRuns(uint32_t processId, const char* startTime)
{
    char* end = nullptr;
    const unsigned long long time = std::strtoull(startTime, &end, 10);
    if (processId == 0 || *startTime < '0' || *startTime > '9' || *end != '\0')
        return true;
    HANDLE process = OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION | SYNCHRONIZE, FALSE, processId);
    if (!process)
        return GetLastError() != ERROR_INVALID_PARAMETER;  // no process has the id
    unsigned long long now = 0;
    bool runs = true;
    if (WaitForSingleObject(process, 0) == WAIT_OBJECT_0)
        runs = false;  // ended; a handle still open keeps its id taken
    else if (CreationTime(process, now))
        runs = now == time;
    CloseHandle(process);
    return runs;
}

bool sys_CurrentDirectory(cow_String& directory, uint32_t& error)
{
    char buffer[MAX_PATH + 1];
    if (!_getcwd(buffer, sizeof(buffer))) {
        error = static_cast<uint32_t>(_doserrno);
        return false;
    }
    directory = cow_String(buffer);
    return true;
}

bool sys_CreateExclusive(const char* path, const char* contents, int length, uint32_t& error)
{
    const int fd = _open(path, _O_CREAT | _O_EXCL | _O_WRONLY | _O_BINARY, _S_IWRITE);
    if (fd <= 0) {
        error = fd < 0 ? static_cast<uint32_t>(_doserrno) : ERROR_INVALID_HANDLE;
        if (fd == 0)
            _close(fd);
        return false;
    }
    for (int done = 0; done < length;) {
        const int n = _write(fd, contents + done, static_cast<unsigned>(length - done));
        if (n <= 0)
            break;
        done += n;
    }
    _close(fd);
    return true;
}

bool sys_RemoveFile(const char* path, uint32_t& error)
{
    if (_unlink(path) == 0)
        return true;
    error = static_cast<uint32_t>(_doserrno);
    return false;
}

cow_String sys_ErrorText(uint32_t code)
{
    char* buffer = nullptr;
    const DWORD flags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    const DWORD n = FormatMessageA(flags, nullptr, code, 0x400, reinterpret_cast<char*>(&buffer), 1024, nullptr);
    if (!buffer)
        return cow_String();
    try {
        cow_String text(buffer, static_cast<int>(n));
        LocalFree(buffer);
        return text;
    } catch (...) {
        LocalFree(buffer);
        throw;
    }
}

bool sys_HostName(cow_String& name, uint32_t& error)
{
    // The socket layer counts its users: this call's start is paired with its own clean-up.
    WSADATA data;
    const int started = WSAStartup(MAKEWORD(1, 1), &data);
    if (started != 0) {
        error = static_cast<uint32_t>(started);
        return false;
    }
    char buffer[257];
    const bool named = gethostname(buffer, 256) == 0;
    if (!named)
        error = static_cast<uint32_t>(WSAGetLastError());
    WSACleanup();
    if (!named)
        return false;
    buffer[256] = '\0';
    name = cow_String(buffer);
    return true;
}

#include "uti/impl/uti_SpawnPlatform.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <io.h>
#include <windows.h>

#include "sys/impl/sys_Os.h"

namespace uti_SpawnPlatform {

const intptr_t kNoProcess = 0;
const char kPathListSeparator = ';';
const char* const kStartCall = "CreateProcess";
const char* const kWaitCall = "GetExitCodeProcess";
const int kStillActive = STILL_ACTIVE;

namespace {

const DWORD kStandard[3] = {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};

HANDLE AsHandle(intptr_t process)
{
    return reinterpret_cast<HANDLE>(process);
}

void Inheritable(HANDLE h, bool inherit)
{
    if (h && h != INVALID_HANDLE_VALUE)
        SetHandleInformation(h, HANDLE_FLAG_INHERIT, inherit ? HANDLE_FLAG_INHERIT : 0);
}

bool EndsWithExe(const cow_String& name)
{
    const int n = name.Length();
    if (n < 4)
        return false;
    const char* tail = name.c_str() + n - 4;
    return tail[0] == '.' && (tail[1] | 0x20) == 'e' && (tail[2] | 0x20) == 'x' && (tail[3] | 0x20) == 'e';
}

}  // namespace

cow_String CommandFileName(const cow_String& command)
{
    if (EndsWithExe(command))
        return command;
    cow_String name(command);
    name += ".exe";
    return name;
}

bool TriesNameAsGiven(const cow_String&)
{
    return true;
}

// The lookup appends ".exe" in any case of letters; the file must be there and readable.
bool IsStartable(const utl_FilePath& path)
{
    return path.Exists() && !path.IsDir() && path.IsReadable() && EndsWithExe(path.FileName());
}

bool Start(const StartRequest& request, intptr_t& process, uint32_t& error)
{
    // With an environment block of its own the child is given the current directory by name.
    cow_String directory;
    uint32_t directoryError = 0;
    const bool named = request.environmentBlock && sys_CurrentDirectory(directory, directoryError);

    STARTUPINFOA startup;
    ZeroMemory(&startup, sizeof(startup));
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;

    HANDLE parent[3];
    for (int i = 0; i < 3; ++i) {
        parent[i] = GetStdHandle(kStandard[i]);
        Inheritable(parent[i], false);
    }
    HANDLE child[3];
    for (int i = 0; i < 3; ++i) {
        const int d = request.descriptors[i];
        if (d >= 3 && _get_osfhandle(d) == -1) {
            for (int j = 0; j < 3; ++j)
                Inheritable(parent[j], true);
            error = ERROR_INVALID_HANDLE;
            return false;
        }
    }
    for (int i = 0; i < 3; ++i) {
        const int d = request.descriptors[i];
        if (d > 0) {
            // A stream number names what that stream of the child got, or the parent's stream
            // when it is not decided yet.
            if (d < 3)
                child[i] = d < i ? child[d] : parent[d];
            else
                child[i] = reinterpret_cast<HANDLE>(_get_osfhandle(d));
            Inheritable(child[i], true);
        } else {
            child[i] = parent[i];
            Inheritable(parent[i], true);
        }
        if (request.traceRedirections)
            uti_SpawnTraceRedirection(i, reinterpret_cast<intptr_t>(child[i]));
    }
    startup.hStdInput = child[0];
    startup.hStdOutput = child[1];
    startup.hStdError = child[2];

    // CreateProcessA may write into the command line.
    const size_t length = std::strlen(request.commandLine);
    char* line = static_cast<char*>(std::malloc(length + 1));
    const char* workingDirectory = named ? directory.c_str() : nullptr;
    BOOL created = FALSE;
    PROCESS_INFORMATION info;
    ZeroMemory(&info, sizeof(info));
    if (!line) {
        error = ERROR_NOT_ENOUGH_MEMORY;
    } else {
        std::memcpy(line, request.commandLine, length + 1);
        request.announce(request.announceContext);
        created = CreateProcessA(nullptr, line, nullptr, nullptr, TRUE, request.window < 0 ? CREATE_NO_WINDOW : 0,
                                 const_cast<char*>(request.environmentBlock), workingDirectory, &startup, &info);
        if (!created)
            error = GetLastError();
        std::free(line);
    }
    for (int i = 0; i < 3; ++i)
        Inheritable(parent[i], true);
    if (!created)
        return false;
    CloseHandle(info.hThread);
    process = reinterpret_cast<intptr_t>(info.hProcess);
    return true;
}

// The exit code is asked after each wait until it is no longer STILL_ACTIVE or the wait timed out.
WaitResult Wait(intptr_t process, int seconds, int& status, uint32_t& error)
{
    const HANDLE h = AsHandle(process);
    DWORD code = STILL_ACTIVE;
    if (seconds < 0) {
        if (!GetExitCodeProcess(h, &code)) {
            error = errno;
            return Failed;
        }
    } else {
        DWORD waited;
        do {
            waited = WaitForSingleObject(h, seconds == 0 ? INFINITE : static_cast<DWORD>(seconds) * 1000u);
            if (!GetExitCodeProcess(h, &code)) {
                error = errno;
                return Failed;
            }
        } while (code == STILL_ACTIVE && waited != WAIT_TIMEOUT && waited != WAIT_FAILED);
    }
    if (code == STILL_ACTIVE)
        return Running;
    status = static_cast<int>(code);
    return Exited;
}

int WaitAny(const intptr_t* processes, int count, int& status, uint32_t& error)
{
    // WaitForMultipleObjects takes at most 64 handles: larger sets are watched in turns.
    const bool single = count <= MAXIMUM_WAIT_OBJECTS;
    for (;;) {
        for (int from = 0; from < count; from += MAXIMUM_WAIT_OBJECTS) {
            const int n = count - from < MAXIMUM_WAIT_OBJECTS ? count - from : MAXIMUM_WAIT_OBJECTS;
            const DWORD waited = WaitForMultipleObjects(static_cast<DWORD>(n), reinterpret_cast<const HANDLE*>(processes + from),
                                                        FALSE, single ? INFINITE : 20);
            if (waited == WAIT_TIMEOUT)
                continue;
            if (waited == WAIT_FAILED || waited >= WAIT_OBJECT_0 + static_cast<DWORD>(n)) {
                error = GetLastError();
                return -1;
            }
            const int which = from + static_cast<int>(waited - WAIT_OBJECT_0);
            DWORD code = 0;
            if (!GetExitCodeProcess(AsHandle(processes[which]), &code)) {
                error = GetLastError();
                return -1;
            }
            status = static_cast<int>(code);
            return which;
        }
    }
}

bool Terminate(intptr_t process)
{
    return TerminateProcess(AsHandle(process), static_cast<UINT>(-1)) != 0;
}

void Release(intptr_t process)
{
    CloseHandle(AsHandle(process));
}

void CloseDescriptor(int descriptor)
{
    _close(descriptor);
}

char** EnvironmentTable()
{
    return _environ;
}

}  // namespace uti_SpawnPlatform

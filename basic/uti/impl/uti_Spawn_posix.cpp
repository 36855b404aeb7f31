#include "uti/impl/uti_SpawnPlatform.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <spawn.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include "mem/mem_Memory.h"
#include "sys/impl/sys_Os.h"

extern char** environ;

namespace uti_SpawnPlatform {

const intptr_t kNoProcess = -1;
const char kPathListSeparator = ':';
const char* const kStartCall = "posix_spawn";
const char* const kWaitCall = "waitpid";
const int kStillActive = -2;  // never a decoded status

namespace {

// An exit code as such; a death by signal reads as -1, the status a killed child has on Windows.
int Decode(int raw)
{
    return WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
}

long long NowMilliseconds()
{
    struct timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return static_cast<long long>(t.tv_sec) * 1000 + t.tv_nsec / 1000000;
}

// One look at a child: 1 ended (status set), 0 running, -1 failed (error set).
int Look(pid_t pid, int& status, uint32_t& error)
{
    int raw = 0;
    pid_t done;
    do {
        done = waitpid(pid, &raw, WNOHANG);
    } while (done < 0 && errno == EINTR);
    if (done < 0) {
        error = errno;
        return -1;
    }
    if (done == 0)
        return 0;
    status = Decode(raw);
    return 1;
}

// Polling interval: short at first, so quick children are seen quickly, then up to 50 ms.
long NextPause(long pause)
{
    return pause < 50 ? pause * 2 : 50;
}

// The file actions for the three streams, in order, so that an entry naming an earlier stream
// gets what that stream got; handed-over descriptors are closed in the child after use.
int AddRedirections(posix_spawn_file_actions_t& actions, const StartRequest& request)
{
    for (int i = 0; i < 3; ++i) {
        const int d = request.descriptors[i];
        if (d <= 0)
            continue;
        if (request.traceRedirections)
            uti_SpawnTraceRedirection(i, d);
        if (d != i) {
            const int rc = posix_spawn_file_actions_adddup2(&actions, d, i);
            if (rc != 0)
                return rc;
        }
    }
    for (int i = 0; i < 3; ++i) {
        const int d = request.descriptors[i];
        bool seen = false;
        for (int j = 0; j < i; ++j)
            seen = seen || request.descriptors[j] == d;
        if (d >= 3 && !seen) {
            const int rc = posix_spawn_file_actions_addclose(&actions, d);
            if (rc != 0)
                return rc;
        }
    }
    return 0;
}

// Pointers to the entries of an environment block.
char** BlockEntries(const char* block)
{
    size_t n = 0;
    for (const char* p = block; *p; p += std::strlen(p) + 1)
        ++n;
    char** entries = static_cast<char**>(mem_Malloc(sizeof(char*) * (n + 1)));
    if (!entries)
        return nullptr;
    n = 0;
    for (const char* p = block; *p; p += std::strlen(p) + 1)
        entries[n++] = const_cast<char*>(p);
    entries[n] = nullptr;
    return entries;
}

}  // namespace

cow_String CommandFileName(const cow_String& command)
{
    return command;
}

bool TriesNameAsGiven(const cow_String& name)
{
    return name.Find('/') >= 0;
}

bool IsStartable(const utl_FilePath& path)
{
    return path.IsExecutable() && !path.IsDir();
}

bool Start(const StartRequest& request, intptr_t& process, uint32_t& error)
{
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    if ((error = posix_spawn_file_actions_init(&actions)) != 0)
        return false;
    if ((error = posix_spawnattr_init(&attributes)) != 0) {
        posix_spawn_file_actions_destroy(&actions);
        return false;
    }
    char** entries = nullptr;
    error = AddRedirections(actions, request);
#if defined(POSIX_SPAWN_SETSID)
    if (error == 0 && request.window < 0)
        error = posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
#endif
    if (error == 0 && request.environmentBlock && !(entries = BlockEntries(request.environmentBlock)))
        error = ENOMEM;
    if (error == 0) {
        request.announce(request.announceContext);
        pid_t pid = -1;
        error = posix_spawn(&pid, request.program, &actions, &attributes, request.argv, entries ? entries : environ);
        if (error == 0)
            process = pid;
    }
    mem_Free(entries);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error == 0;
}

WaitResult Wait(intptr_t process, int seconds, int& status, uint32_t& error)
{
    const pid_t pid = static_cast<pid_t>(process);
    if (seconds == 0) {
        int raw = 0;
        pid_t done;
        do {
            done = waitpid(pid, &raw, 0);
        } while (done < 0 && errno == EINTR);
        if (done < 0) {
            error = errno;
            return Failed;
        }
        status = Decode(raw);
        return Exited;
    }
    const long long deadline = NowMilliseconds() + (seconds > 0 ? static_cast<long long>(seconds) * 1000 : 0);
    for (long pause = 1;; pause = NextPause(pause)) {
        const int seen = Look(pid, status, error);
        if (seen != 0)
            return seen > 0 ? Exited : Failed;
        const long long left = deadline - NowMilliseconds();
        if (left <= 0)
            return Running;
        sys_SleepMilliseconds(static_cast<uint32_t>(left < pause ? left : pause));
    }
}

// No call waits for one of a set of children without reaping others of the process: poll them.
int WaitAny(const intptr_t* processes, int count, int& status, uint32_t& error)
{
    for (long pause = 1;; pause = NextPause(pause)) {
        for (int i = 0; i < count; ++i) {
            const int seen = Look(static_cast<pid_t>(processes[i]), status, error);
            if (seen != 0)
                return seen > 0 ? i : -1;
        }
        sys_SleepMilliseconds(static_cast<uint32_t>(pause));
    }
}

bool Terminate(intptr_t process)
{
    return kill(static_cast<pid_t>(process), SIGKILL) == 0;
}

void Release(intptr_t) {}

void CloseDescriptor(int descriptor)
{
    close(descriptor);
}

char** EnvironmentTable()
{
    return environ;
}

}  // namespace uti_SpawnPlatform

#include "sys/impl/sys_Os.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <limits.h>
#include <time.h>
#include <unistd.h>

namespace {

// Up to size - 1 bytes of a small file, zero-terminated; -1 with errno set on failure.
long ReadSmallFile(const char* path, char* buffer, size_t size)
{
    int fd;
    do {
        fd = ::open(path, O_RDONLY | O_CLOEXEC);
    } while (fd < 0 && errno == EINTR);
    if (fd < 0)
        return -1;
    size_t got = 0;
    while (got + 1 < size) {
        const ssize_t n = ::read(fd, buffer + got, size - 1 - got);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            const int saved = errno;
            ::close(fd);
            errno = saved;
            return -1;
        }
        if (n == 0)
            break;
        got += static_cast<size_t>(n);
    }
    ::close(fd);
    buffer[got] = '\0';
    return static_cast<long>(got);
}

// The boot id without its newline; empty when the system gives none.
void BootId(char (&id)[40])
{
    if (ReadSmallFile("/proc/sys/kernel/random/boot_id", id, sizeof(id)) < 0)
        id[0] = '\0';
    id[std::strcspn(id, "\r\n")] = '\0';
}

// The state letter (field 3) and the start in clock ticks (field 22) from /proc/<pid>/stat. The
// command name (field 2) is in parentheses and may hold blanks and parentheses itself: the
// fields after it follow its last ")".
bool ReadStat(uint32_t processId, char& state, unsigned long long& ticks, uint32_t& error)
{
    char path[64];
    std::snprintf(path, sizeof(path), "/proc/%lu/stat", static_cast<unsigned long>(processId));
    char stat[1024];
    if (ReadSmallFile(path, stat, sizeof(stat)) < 0) {
        error = static_cast<uint32_t>(errno);
        return false;
    }
    const char* p = std::strrchr(stat, ')');
    error = EINVAL;
    if (!p || p[1] != ' ')
        return false;
    p += 2;
    state = *p;
    for (int field = 3; field < 22; ++field) {
        p = std::strchr(p, ' ');
        if (!p)
            return false;
        ++p;
    }
    char* end = nullptr;
    errno = 0;
    ticks = std::strtoull(p, &end, 10);
    if (end == p || errno != 0 || (*end != ' ' && *end != '\0' && *end != '\n'))
        return false;
    error = 0;
    return true;
}

// "<ticks>/<boot id>" split into its parts; false when the text has another form.
bool ParseStartTime(const char* text, unsigned long long& ticks, const char*& bootId)
{
    if (*text < '0' || *text > '9')
        return false;
    char* end = nullptr;
    errno = 0;
    ticks = std::strtoull(text, &end, 10);
    if (errno != 0 || *end != '/')
        return false;
    bootId = end + 1;
    return true;
}

}  // namespace

void sys_SleepMilliseconds(uint32_t milliseconds)
{
    struct timespec left;
    left.tv_sec = static_cast<time_t>(milliseconds / 1000);
    left.tv_nsec = static_cast<long>(milliseconds % 1000) * 1000000L;
    while (::nanosleep(&left, &left) != 0 && errno == EINTR) {
    }
}

uint32_t sys_ProcessId()
{
    return static_cast<uint32_t>(::getpid());
}

bool sys_ProcessStartTime(uint32_t processId, char (&startTime)[sys_kStartTimeSize], uint32_t& error)
{
    char state = 0;
    unsigned long long ticks = 0;
    if (!ReadStat(processId, state, ticks, error))
        return false;
    char bootId[40];
    BootId(bootId);
    std::snprintf(startTime, sys_kStartTimeSize, "%llu/%s", ticks, bootId);
    return true;
}

bool sys_ProcessRuns(uint32_t processId, const char* startTime)
{
    unsigned long long ticks = 0;
    const char* bootId = nullptr;
    if (processId == 0 || processId > 0x7FFFFFFFu || !ParseStartTime(startTime, ticks, bootId))
        return true;
    char state = 0;
    unsigned long long nowTicks = 0;
    uint32_t error = 0;
    if (!ReadStat(processId, state, nowTicks, error)) {
        // /proc may hide other users' processes: the signal test still sees them.
        return !(error == ENOENT && ::kill(static_cast<pid_t>(processId), 0) != 0 && errno == ESRCH);
    }
    if (state == 'Z' || state == 'X')
        return false;
    char nowBootId[40];
    BootId(nowBootId);
    if (*bootId && *nowBootId && std::strcmp(bootId, nowBootId) != 0)
        return false;  // written before the last restart
    return ticks == nowTicks;
}

bool sys_CurrentDirectory(cow_String& directory, uint32_t& error)
{
    char buffer[PATH_MAX];
    if (!::getcwd(buffer, sizeof(buffer))) {
        error = static_cast<uint32_t>(errno);
        return false;
    }
    directory = cow_String(buffer);
    return true;
}

bool sys_CreateExclusive(const char* path, const char* contents, int length, uint32_t& error)
{
    const int fd = ::open(path, O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0644);
    if (fd <= 0) {
        error = fd < 0 ? static_cast<uint32_t>(errno) : EBADF;
        if (fd == 0)
            ::close(fd);
        return false;
    }
    for (int done = 0; done < length;) {
        const ssize_t n = ::write(fd, contents + done, static_cast<size_t>(length - done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        done += static_cast<int>(n);
    }
    ::close(fd);
    return true;
}

bool sys_RemoveFile(const char* path, uint32_t& error)
{
    if (::unlink(path) == 0)
        return true;
    error = static_cast<uint32_t>(errno);
    return false;
}

cow_String sys_ErrorText(uint32_t code)
{
    return cow_String(std::strerror(static_cast<int>(code)));
}

bool sys_HostName(cow_String& name, uint32_t& error)
{
    char buffer[257];
    if (::gethostname(buffer, 256) != 0) {
        error = static_cast<uint32_t>(errno);
        return false;
    }
    buffer[256] = '\0';
    name = cow_String(buffer);
    return true;
}

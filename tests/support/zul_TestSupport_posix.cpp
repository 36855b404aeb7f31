// The POSIX side of the test support.
#include "zul_TestSupport.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

extern char** environ;

namespace zul_test {

const char* const kExeSuffix = "";
const char kPathListSeparator = ':';
const char kDirSeparator = '/';
const uint32_t kIoErrorCode = EIO;
const uint32_t kDiskFullCode = ENOSPC;

long ProcessId()
{
    return static_cast<long>(getpid());
}

void SetEnvironment(const char* name, const char* value)
{
    if (value)
        setenv(name, value, 1);
    else
        unsetenv(name);
}

void MakeExecutable(const std::string& path)
{
    chmod(path.c_str(), 0755);
}

std::string ProgramDirectory()
{
    char self[PATH_MAX + 1];
    const ssize_t n = readlink("/proc/self/exe", self, PATH_MAX);
    const std::string path(self, n > 0 ? static_cast<size_t>(n) : 0);
    return path.substr(0, path.find_last_of('/') + 1);
}

int OpenDescriptor(const std::string& path, int flags, int mode)
{
    return open(path.c_str(), flags, mode);
}

void CloseDescriptor(int fd)
{
    close(fd);
}

int OpenDescriptorCount()
{
    DIR* dir = opendir("/proc/self/fd");
    if (!dir)
        return -1;
    int n = 0;
    while (readdir(dir))
        ++n;
    closedir(dir);
    return n;
}

std::FILE* StartCommand(const std::string& commandLine)
{
    return popen(commandLine.c_str(), "r");
}

void EndCommand(std::FILE* pipe)
{
    pclose(pipe);
}

void BinaryStandardStreams() {}

char** EnvironmentTable()
{
    return environ;
}

}  // namespace zul_test

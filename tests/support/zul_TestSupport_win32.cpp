// The Windows side of the test support.
#include "zul_TestSupport.h"

#include <cstdlib>
#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <windows.h>

namespace zul_test {

const char* const kExeSuffix = ".exe";
const char kPathListSeparator = ';';
const char kDirSeparator = '\\';
const uint32_t kIoErrorCode = ERROR_IO_DEVICE;
const uint32_t kDiskFullCode = ERROR_DISK_FULL;

long ProcessId()
{
    return static_cast<long>(_getpid());
}

void SetEnvironment(const char* name, const char* value)
{
    _putenv_s(name, value ? value : "");
}

void MakeExecutable(const std::string&) {}

std::string ProgramDirectory()
{
    char self[MAX_PATH + 1];
    const DWORD n = GetModuleFileNameA(nullptr, self, MAX_PATH);
    const std::string path(self, n);
    return path.substr(0, path.find_last_of("\\/") + 1);
}

int OpenDescriptor(const std::string& path, int flags, int mode)
{
    return _open(path.c_str(), flags | _O_BINARY, mode);
}

void CloseDescriptor(int fd)
{
    _close(fd);
}

int OpenDescriptorCount()
{
    return -1;
}

std::FILE* StartCommand(const std::string& commandLine)
{
    return _popen(commandLine.c_str(), "rb");
}

void EndCommand(std::FILE* pipe)
{
    _pclose(pipe);
}

void BinaryStandardStreams()
{
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
}

char** EnvironmentTable()
{
    return _environ;
}

}  // namespace zul_test

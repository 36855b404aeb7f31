#include "zul_SpawnTestSupport.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>

#if defined(_WIN32)
#include <io.h>
#include <windows.h>
#else
#include <dirent.h>
#include <limits.h>
#include <unistd.h>
#endif

namespace zul_test {

std::string ProgramPath(const std::string& name)
{
#if defined(_WIN32)
    char self[MAX_PATH + 1];
    const DWORD n = GetModuleFileNameA(nullptr, self, MAX_PATH);
    std::string path(self, n);
    return path.substr(0, path.find_last_of("\\/") + 1) + name + ".exe";
#else
    char self[PATH_MAX + 1];
    const ssize_t n = readlink("/proc/self/exe", self, PATH_MAX);
    std::string path(self, n > 0 ? static_cast<size_t>(n) : 0);
    return path.substr(0, path.find_last_of('/') + 1) + name;
#endif
}

std::string ChildPath()
{
    return ProgramPath("zul_child");
}

int OpenForReading(const std::string& path)
{
#if defined(_WIN32)
    return _open(path.c_str(), _O_RDONLY | _O_BINARY);
#else
    return open(path.c_str(), O_RDONLY);
#endif
}

int OpenForWriting(const std::string& path)
{
#if defined(_WIN32)
    return _open(path.c_str(), _O_WRONLY | _O_CREAT | _O_TRUNC | _O_BINARY, 0666);
#else
    return open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
#endif
}

int OpenDescriptorCount()
{
#if defined(_WIN32)
    return -1;
#else
    DIR* dir = opendir("/proc/self/fd");
    if (!dir)
        return -1;
    int n = 0;
    while (readdir(dir))
        ++n;
    closedir(dir);
    return n;
#endif
}

cow_1DArrayList<cow_String> Arguments(const std::vector<std::string>& texts)
{
    cow_1DArrayList<cow_String> list;
    for (const std::string& t : texts)
        list.Append(cow_String(t.c_str()));
    return list;
}

#if defined(_WIN32)
#define zul_dup _dup
#define zul_dup2 _dup2
#define zul_close _close
#else
#define zul_dup dup
#define zul_dup2 dup2
#define zul_close close
#endif

StdoutCapture::StdoutCapture(const std::string& path)
{
    std::fflush(stdout);
    m_saved = zul_dup(1);
    const int fd = OpenForWriting(path);
    zul_dup2(fd, 1);
    zul_close(fd);
}

StdoutCapture::~StdoutCapture()
{
    Stop();
}

void StdoutCapture::Stop()
{
    if (m_saved < 0)
        return;
    std::fflush(stdout);
    zul_dup2(m_saved, 1);
    zul_close(m_saved);
    m_saved = -1;
}

}  // namespace zul_test

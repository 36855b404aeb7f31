#include "zul_TestSupport.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <cstdlib>
#include <fcntl.h>

#if defined(_WIN32)
#include <io.h>
#include <process.h>
#define ZUL_TEST_GETPID _getpid
#else
#include <unistd.h>
#define ZUL_TEST_GETPID getpid
#endif

namespace zul_test {

namespace fs = std::filesystem;

#if defined(_WIN32)
Descriptor::Descriptor(const std::string& path, int flags) : m_fd(_open(path.c_str(), flags | _O_BINARY, 0600)) {}
Descriptor::~Descriptor()
{
    if (m_fd >= 0)
        _close(m_fd);
}
#else
Descriptor::Descriptor(const std::string& path, int flags) : m_fd(open(path.c_str(), flags, 0600)) {}
Descriptor::~Descriptor()
{
    if (m_fd >= 0)
        close(m_fd);
}
#endif

TempDir::TempDir()
{
    static std::atomic<unsigned> serial{0};
    const auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
    std::ostringstream name;
    name << "zul_test_" << ZUL_TEST_GETPID() << '_' << serial++ << '_' << (stamp & 0xFFFFFF);
    fs::path dir = fs::temp_directory_path() / name.str();
    fs::create_directories(dir);
    m_path = dir.string();
}

TempDir::~TempDir()
{
    std::error_code ec;
    fs::remove_all(m_path, ec);
}

std::string TempDir::File(const std::string& name) const
{
    return (fs::path(m_path) / name).string();
}

std::string ReadFileBytes(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw std::runtime_error("cannot open " + path);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

void WriteFileBytes(const std::string& path, const std::string& bytes)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out)
        throw std::runtime_error("cannot create " + path);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!out)
        throw std::runtime_error("cannot write " + path);
}

void SetEnvironment(const char* name, const char* value)
{
#if defined(_WIN32)
    _putenv_s(name, value ? value : "");
#else
    if (value)
        setenv(name, value, 1);
    else
        unsetenv(name);
#endif
}

}  // namespace zul_test

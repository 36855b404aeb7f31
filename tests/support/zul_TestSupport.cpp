// The portable part of the test support.
#include "zul_TestSupport.h"

#include <atomic>
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace zul_test {

namespace fs = std::filesystem;

TempDir::TempDir()
{
    static std::atomic<unsigned> serial{0};
    const auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
    std::ostringstream name;
    name << "zul_test_" << ProcessId() << '_' << serial++ << '_' << (stamp & 0xFFFFFF);
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

std::string Bytes(std::initializer_list<int> values)
{
    std::string out;
    for (int v : values)
        out.push_back(static_cast<char>(v));
    return out;
}

std::string ProgramPath(const std::string& name)
{
    return ProgramDirectory() + name + kExeSuffix;
}

std::string ChildPath()
{
    return ProgramPath("zul_child");
}

cow_1DArrayList<cow_String> Arguments(const std::vector<std::string>& texts)
{
    cow_1DArrayList<cow_String> list;
    for (const std::string& t : texts)
        list.Append(cow_String(t.c_str()));
    return list;
}

int OpenForReading(const std::string& path)
{
    return OpenDescriptor(path, O_RDONLY);
}

int OpenForWriting(const std::string& path)
{
    return OpenDescriptor(path, O_WRONLY | O_CREAT | O_TRUNC, 0666);
}

int OpenForUpdate(const std::string& path)
{
    return OpenDescriptor(path, O_RDWR);
}

std::string CommandOutput(const std::string& commandLine)
{
    std::FILE* pipe = StartCommand(commandLine);
    if (!pipe)
        return "<could not run " + commandLine + ">";
    std::string out;
    char buffer[256];
    size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0)
        for (size_t i = 0; i < n; ++i)
            if (buffer[i] != '\r')
                out += buffer[i];
    EndCommand(pipe);
    return out;
}

Descriptor::~Descriptor()
{
    if (m_fd >= 0)
        CloseDescriptor(m_fd);
}

}  // namespace zul_test

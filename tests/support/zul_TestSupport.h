// Helpers shared by the test programs. The operating-system code is in zul_TestSupport_posix.cpp
// and zul_TestSupport_win32.cpp (the build takes the one for the target), so that a test keeps
// a platform conditional only where the expected result itself differs.
#ifndef ZUL_TESTSUPPORT_H
#define ZUL_TESTSUPPORT_H

#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "cow/cow_1DArrayList.h"
#include "cow/cow_String.h"
#include "mem/mem_Memory.h"

namespace zul_test {

// ---- Platform facts and calls (zul_TestSupport_<platform>.cpp) ----

// The suffix of a program file: "" or ".exe".
extern const char* const kExeSuffix;
// What separates the directories of PATH: ':' or ';'.
extern const char kPathListSeparator;
// The native directory separator: '/' or '\\'.
extern const char kDirSeparator;
// The native error codes of a device I/O error and of a full disk.
extern const uint32_t kIoErrorCode;
extern const uint32_t kDiskFullCode;

long ProcessId();
// Sets an environment variable of this process; a null value removes it.
void SetEnvironment(const char* name, const char* value);
// Lets the owner run the file (POSIX); a no-op where the name decides (Windows).
void MakeExecutable(const std::string& path);
// The directory of the test program, with a separator at the end.
std::string ProgramDirectory();
// A runtime-library descriptor on a file, opened in binary mode (flags as for open); -1 when the
// open failed.
int OpenDescriptor(const std::string& path, int flags, int mode = 0600);
void CloseDescriptor(int fd);
// The number of descriptors open in this process (Linux only; -1 elsewhere).
int OpenDescriptorCount();
// popen and pclose of the runtime library, reading in binary mode.
std::FILE* StartCommand(const std::string& commandLine);
void EndCommand(std::FILE* pipe);
// Puts the standard streams in binary mode (no line-end translation).
void BinaryStandardStreams();
// The environment table of this process.
char** EnvironmentTable();

// ---- Portable helpers (zul_TestSupport.cpp) ----

// A fresh, empty directory for one test, removed with everything in it on destruction.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& Path() const { return m_path; }
    // Path of an entry inside the directory, joined with the native separator.
    std::string File(const std::string& name) const;

private:
    std::string m_path;
};

// Reads a whole file as bytes; throws std::runtime_error when it cannot be opened.
std::string ReadFileBytes(const std::string& path);
// Writes bytes to a file, replacing it; throws std::runtime_error on failure.
void WriteFileBytes(const std::string& path, const std::string& bytes);
// Bytes from their values (0..255).
std::string Bytes(std::initializer_list<int> values);
// A program built beside the test program ("zul_child", "zulutil"), with its suffix.
std::string ProgramPath(const std::string& name);
// The helper program zul_child (tests/support/zul_child.cpp) beside the test program.
std::string ChildPath();
cow_1DArrayList<cow_String> Arguments(const std::vector<std::string>& texts);
// Descriptors for reading; for writing (created or truncated); for reading and writing.
int OpenForReading(const std::string& path);
int OpenForWriting(const std::string& path);
int OpenForUpdate(const std::string& path);
// Runs a command line through the shell; answers its standard output with "\r" removed.
std::string CommandOutput(const std::string& commandLine);

// A descriptor opened with OpenDescriptor (O_RDONLY, O_WRONLY | O_CREAT | O_TRUNC, ...), closed
// at the end. fd() is -1 when the open failed.
class Descriptor {
public:
    Descriptor(const std::string& path, int flags) : m_fd(OpenDescriptor(path, flags)) {}
    ~Descriptor();
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int fd() const { return m_fd; }

private:
    int m_fd;
};

// A copy of the E that `action` raises, none when it raises nothing (any other exception goes on
// to the test, which fails).
template <class E, class F>
std::optional<E> Raised(F action)
{
    try {
        action();
    } catch (const E& e) {
        return e;
    }
    return std::nullopt;
}

// The user report of the E that `action` raises, "<nothing raised>" when it raises nothing
// (any other exception goes on to the test, which fails).
template <class E, class F>
std::string ReportOf(F action)
{
    try {
        action();
    } catch (const E& e) {
        return e.UserReport().c_str();
    }
    return "<nothing raised>";
}

// A named write to a container, for the failure sweeps below.
template <class C>
using Write = std::pair<const char*, void (*)(C&)>;

// For each write: runs it on a fresh copy sharing `original`'s storage, making the 1st, 2nd, ...
// allocation fail until the write goes through. After every failure both the copy and the
// original must still read as before (`contents` turns a container into something comparable).
template <class C, class Contents>
void ExpectFailedWritesChangeNothing(const C& original, Contents contents, const std::vector<Write<C>>& writes)
{
    const auto before = contents(original);
    for (const Write<C>& write : writes) {
        bool succeeded = false;
        for (long n = 1; !succeeded && n < 1000; ++n) {
            C sharer(original);
            mem_TestFailAllocation(n);
            try {
                write.second(sharer);
                succeeded = true;
            } catch (...) {
                mem_TestFailAllocation(0);
                EXPECT_EQ(contents(sharer), before) << write.first << " failing at allocation " << n;
            }
            mem_TestFailAllocation(0);
            EXPECT_EQ(contents(original), before) << write.first << " failing at allocation " << n;
        }
        EXPECT_TRUE(succeeded) << write.first << " never succeeded";
    }
}

}  // namespace zul_test

#endif

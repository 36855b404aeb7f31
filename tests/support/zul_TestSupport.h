// Helpers shared by the test suites.
#ifndef ZUL_TESTSUPPORT_H
#define ZUL_TESTSUPPORT_H

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "mem/mem_Memory.h"

namespace zul_test {

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

// A runtime-library descriptor on a file, opened in binary mode (flags as for open: O_RDONLY,
// O_WRONLY | O_CREAT | O_TRUNC, ...; mode 0600), closed at the end. fd() is -1 when it failed.
class Descriptor {
public:
    Descriptor(const std::string& path, int flags);
    ~Descriptor();
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int fd() const { return m_fd; }

private:
    int m_fd;
};

// Reads a whole file as bytes; throws std::runtime_error when it cannot be opened.
std::string ReadFileBytes(const std::string& path);
// Writes bytes to a file, replacing it; throws std::runtime_error on failure.
void WriteFileBytes(const std::string& path, const std::string& bytes);
// Sets an environment variable of this process; a null value removes it.
void SetEnvironment(const char* name, const char* value);

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

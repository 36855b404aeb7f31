// Helpers shared by the test suites.
#ifndef ZUL_TESTSUPPORT_H
#define ZUL_TESTSUPPORT_H

#include <string>

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

// Reads a whole file as bytes; throws std::runtime_error when it cannot be opened.
std::string ReadFileBytes(const std::string& path);
// Writes bytes to a file, replacing it; throws std::runtime_error on failure.
void WriteFileBytes(const std::string& path, const std::string& bytes);

}  // namespace zul_test

#endif

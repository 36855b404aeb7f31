// Helpers of the spawn tests: the child program's path, descriptors, counting open descriptors.
#ifndef ZUL_SPAWNTESTSUPPORT_H
#define ZUL_SPAWNTESTSUPPORT_H

#include <string>
#include <vector>

#include "cow/cow_1DArrayList.h"
#include "cow/cow_String.h"

namespace zul_test {

// A program built beside the test program ("zul_child", "zulutil"; ".exe" added on Windows).
std::string ProgramPath(const std::string& name);
// The helper program zul_child beside the test program.
std::string ChildPath();
// Runtime descriptors (binary mode): a file opened for reading; created or truncated for writing.
int OpenForReading(const std::string& path);
int OpenForWriting(const std::string& path);
// The number of descriptors open in this process (Linux only; -1 elsewhere).
int OpenDescriptorCount();
cow_1DArrayList<cow_String> Arguments(const std::vector<std::string>& texts);

// Sends this process's standard output to a file until Stop (or destruction).
class StdoutCapture {
public:
    explicit StdoutCapture(const std::string& path);
    ~StdoutCapture();
    StdoutCapture(const StdoutCapture&) = delete;
    StdoutCapture& operator=(const StdoutCapture&) = delete;
    void Stop();

private:
    int m_saved;
};

}  // namespace zul_test

#endif

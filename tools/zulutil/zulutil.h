// zulutil: shared pieces of the tool's commands.
//
// Exit statuses: 0 success, 1 a check failed, 2 usage or input error (a failed write to standard
// output included). Every library failure is reported as the exception's user report on
// standard error.
#ifndef ZULUTIL_H
#define ZULUTIL_H

#include <cstdint>
#include <string>
#include <vector>

enum zulutil_Status { zulutil_Ok = 0, zulutil_CheckFailed = 1, zulutil_BadUsage = 2 };

// The tool's arguments after the program name: positional ones in order, options by name.
// Options follow the library's command-line rule; flags (named in zulutil_Args.cpp) never take
// the next argument as their value, so "-d FILE" keeps FILE positional.
class zulutil_Args {
public:
    zulutil_Args();
    const std::vector<std::string>& Positional() const { return m_positional; }
    std::string Positional(size_t i) const { return i < m_positional.size() ? m_positional[i] : std::string(); }
    bool Has(const char* option) const;
    std::string Value(const char* option) const;

private:
    std::vector<std::string> m_positional;
};

// Whole-file and standard-stream input and output, in binary mode. "-" or an empty name is the
// standard stream. Failures throw the library's exceptions.
std::string zulutil_ReadAll(const std::string& path);
void zulutil_WriteAll(const std::string& path, const std::string& bytes);
// Streams a file (or standard input) in pieces, showing progress on a terminal for large files.
void zulutil_ForEachPiece(const std::string& path, void (*piece)(void* context, const char* data, size_t n), void* context);
void zulutil_SetBinaryStandardStreams();
// Flushes standard output. When that or any earlier write to it failed, reports the failure on
// standard error ("zulutil: write error on standard output: <system text>") and returns 2;
// otherwise returns `status`.
int zulutil_FinishStandardOutput(int status);

// Prints the usage of one command (all commands for an empty name) and returns `status`.
int zulutil_Usage(const std::string& command, int status);
// The usage error: a short line on standard error, then the command's usage.
int zulutil_UsageError(const std::string& command, const std::string& message);

int zulutil_Msf(const zulutil_Args& args);
int zulutil_Md5(const zulutil_Args& args);
int zulutil_Crc(const zulutil_Args& args);
int zulutil_Base64(const zulutil_Args& args);
int zulutil_Cipher(const zulutil_Args& args, bool encrypt);
int zulutil_Rgx(const zulutil_Args& args);
int zulutil_Host(const zulutil_Args& args);

#endif

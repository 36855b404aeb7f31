#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "nex/nex_Exception.h"
#include "utl/utl_File.h"
#include "utl/utl_FileOffset.h"
#include "zulutil.h"

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#define zulutil_isatty _isatty
#else
#include <unistd.h>
#define zulutil_isatty isatty
#endif

namespace {

const size_t kPiece = size_t(1) << 20;
const uint64_t kProgressThreshold = uint64_t(64) << 20;

// The error number of the first failed write to standard output; -1 when it is not known.
int g_outputError = 0;

void NoteOutputError(int error)
{
    if (g_outputError == 0)
        g_outputError = error != 0 ? error : -1;
}

bool IsStandardStream(const std::string& path)
{
    return path.empty() || path == "-";
}

}  // namespace

void zulutil_SetBinaryStandardStreams()
{
#ifdef _WIN32
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
#endif
}

void zulutil_ForEachPiece(const std::string& path, void (*piece)(void*, const char*, size_t), void* context)
{
    std::string buffer(kPiece, '\0');
    if (IsStandardStream(path)) {
        size_t n;
        while ((n = std::fread(&buffer[0], 1, kPiece, stdin)) > 0)
            piece(context, buffer.data(), n);
        if (std::ferror(stdin))
            NEX_RAISE(nex_TextException, atr_String("error reading standard input"));
        return;
    }
    utl_File file(path.c_str(), utl_FileAccessRead);
    const uint64_t size = static_cast<uint64_t>(file.FileSize().Value());
    const bool progress = size > kProgressThreshold && zulutil_isatty(2);
    uint64_t done = 0;
    int lastPercent = -1;
    for (;;) {
        const int n = file.Read(&buffer[0], static_cast<int>(kPiece));
        if (n <= 0)
            break;
        piece(context, buffer.data(), static_cast<size_t>(n));
        done += static_cast<uint64_t>(n);
        if (progress) {
            const int percent = static_cast<int>(done * 100 / size);
            if (percent != lastPercent) {
                std::fprintf(stderr, "\r%s: %3d%%", path.c_str(), percent);
                lastPercent = percent;
            }
        }
    }
    if (progress)
        std::fprintf(stderr, "\n");
}

std::string zulutil_ReadAll(const std::string& path)
{
    std::string all;
    zulutil_ForEachPiece(
        path, [](void* c, const char* data, size_t n) { static_cast<std::string*>(c)->append(data, n); }, &all);
    return all;
}

void zulutil_WriteAll(const std::string& path, const std::string& bytes)
{
    if (IsStandardStream(path)) {
        // A failure stops the output here; zulutil_FinishStandardOutput reports it.
        errno = 0;
        if ((!bytes.empty() && std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size()) || std::fflush(stdout) != 0)
            NoteOutputError(errno);
        return;
    }
    utl_File file(path.c_str(), utl_FileAccessWrite);
    size_t done = 0;
    while (done < bytes.size()) {
        const size_t n = bytes.size() - done < kPiece ? bytes.size() - done : kPiece;
        file.Write(bytes.data() + done, static_cast<int>(n));
        done += n;
    }
    file.Flush();
}

int zulutil_FinishStandardOutput(int status)
{
    errno = 0;
    if (std::fflush(stdout) != 0 || std::ferror(stdout))
        NoteOutputError(errno);
    if (g_outputError == 0)
        return status;
    if (g_outputError > 0)
        std::fprintf(stderr, "zulutil: write error on standard output: %s\n", std::strerror(g_outputError));
    else
        std::fprintf(stderr, "zulutil: write error on standard output\n");
    return zulutil_BadUsage;
}

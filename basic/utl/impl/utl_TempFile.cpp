#include "utl/utl_TempFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "atr/atr_translate.h"
#include "utl/utl_CommandLine.h"
#include "utl/utl_DirObject.h"
#include "utl/utl_DirPathUtils.h"
#include "utl/utl_Stat.h"

#include <unistd.h>  // the C runtime's POSIX names (MinGW-w64 maps them onto _open and _close)

namespace {

const char kTemplate[] = "ZulTempFileXXXXXX";
const int kNameAttempts = 1000;

bool IsDirectory(const cow_String& path)
{
    if (path.Length() == 0)
        return false;
    return utl_Stat(path).IsDirectory();
}

bool Exists(const cow_String& path)
{
    return utl_Stat(path).Found();
}

// Replaces the trailing six X of the template with letters and digits so that the name does not
// exist yet; false when no free name was found.
bool MakeUnique(cow_String& path)
{
    static const char kAlphabet[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    static std::atomic<uint64_t> counter{0};
    const int base = path.Length() - 6;
    uint64_t seed = static_cast<uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    seed ^= reinterpret_cast<uintptr_t>(&path);
    for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
        uint64_t x = seed + counter.fetch_add(0x9E3779B97F4A7C15ULL);
        x ^= x >> 31;
        x *= 0xBF58476D1CE4E5B9ULL;
        x ^= x >> 29;
        for (int i = 0; i < 6; ++i) {
            path[base + i] = kAlphabet[x % 62];
            x /= 62;
        }
        if (!Exists(path))
            return true;
    }
    return false;
}

}  // namespace

utl_TempFileCantExc::utl_TempFileCantExc()
    : utl_TempFileException(atr_String("*** ERROR: Can't create unique temporary file name."))
{
}

utl_TempFileOpenExc::utl_TempFileOpenExc(const cow_String& name, const char* systemText)
    : utl_TempFileException(atr_translate("*** ERROR: Can't create temporary file: %1$s, system error: %2$s").Arg(name).Arg(systemText))
{
}

utl_TempFileDirExc::utl_TempFileDirExc(const cow_String& directory)
    : utl_TempFileException(atr_translate("*** ERROR: Not a directory: %s").Arg(directory))
{
}

utl_TempFileNoDirExc::utl_TempFileNoDirExc()
    : utl_TempFileException(atr_String("*** ERROR: Can't find directory in which to place temporary file."))
{
}

utl_TempFile::utl_TempFile(const cow_String& extension) : m_named(0), m_available(0), m_name(extension), m_fd(-1) {}

utl_TempFile::~utl_TempFile()
{
    if (!m_named)
        return;
    Close();
    std::remove(m_name.c_str());
}

cow_String utl_TempFile::ScratchDirectory()
{
    cow_String dir;
    const cow_String option = utl_CommandLine::Instance().ConstGetValue("tmpdir", cow_String());
    if (IsDirectory(option)) {
        dir = option;
    } else {
        const char* scratch = std::getenv("SCRATCH");
        const char* tmpdir = std::getenv("TMPDIR");
        if (scratch && IsDirectory(scratch))
            dir = scratch;
        else if (tmpdir && IsDirectory(tmpdir))
            dir = tmpdir;
        else
            return cow_String();
    }
    if (dir[dir.Length() - 1] != UTL_NATIVE_SEPARATOR)
        dir += UTL_NATIVE_SEPARATOR;
    return dir;
}

void utl_TempFile::NameIfNeeded()
{
    if (m_named)
        return;
    cow_String path = ScratchDirectory();
    if (path.Length() == 0)
        nex_Raise<utl_TempFileCantExc>(ZUL_SOURCE_NAME, __LINE__);
    const uint64_t available = utl_DiskAttributes(path).GetFreeDiskSpace();
    path += kTemplate;
    if (!MakeUnique(path))
        nex_Raise<utl_TempFileCantExc>(ZUL_SOURCE_NAME, __LINE__);
    const cow_String& extension = m_name;
    if (extension.Length() > 0) {
        if (extension[0] != '.')
            path += '.';
        path += extension;
    }
    m_available = available;
    m_name = path;
    m_named = 1;
}

uint64_t utl_TempFile::AvailableSpace()
{
    NameIfNeeded();
    return m_available;
}

void utl_TempFile::Create()
{
    NameIfNeeded();
    const int fd = ::open(m_name.c_str(), O_RDWR | O_CREAT | O_EXCL, S_IRUSR | S_IWUSR);
    if (fd < 0)
        NEX_RAISE(utl_TempFileOpenExc, m_name, std::strerror(errno));
    Close();
    m_fd = fd;
}

bool utl_TempFile::OpenIfPresent()
{
    NameIfNeeded();
    const int fd = ::open(m_name.c_str(), O_RDWR, S_IRUSR | S_IWUSR);
    if (fd < 0) {
        if (errno == ENOENT)
            return false;
        NEX_RAISE(utl_TempFileOpenExc, m_name, std::strerror(errno));
    }
    Close();
    m_fd = fd;
    return true;
}

void utl_TempFile::Open()
{
    if (!OpenIfPresent())
        NEX_RAISE(utl_TempFileOpenExc, m_name, std::strerror(ENOENT));
}

void utl_TempFile::Close()
{
    if (m_named && m_fd >= 0)
        ::close(m_fd);
    m_fd = -1;
}

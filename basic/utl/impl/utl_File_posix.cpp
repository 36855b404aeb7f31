#include "utl/impl/utl_FileSystem.h"
#include "utl/impl/utl_ParentDirectory.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace utl_FileSystem {

namespace {

bool Fail(uint32_t& error)
{
    error = static_cast<uint32_t>(errno);
    return false;
}

}  // namespace

// Sharing modes have no POSIX counterpart: they are advisory here.
bool Open(const cow_String& name, int access, Share, intptr_t& handle, uint32_t& error)
{
    const int flags = access == 0 ? O_RDONLY : (access == 1 ? O_RDWR : (O_RDWR | O_CREAT | O_TRUNC));
    const int fd = ::open(name.c_str(), flags, 0666);
    if (fd < 0)
        return Fail(error);
    struct stat info;
    if (::fstat(fd, &info) == 0 && S_ISDIR(info.st_mode)) {  // a directory is no file to open
        ::close(fd);
        error = EISDIR;
        return false;
    }
    handle = fd;
    return true;
}

bool IsNoSuchFile(uint32_t error, const cow_String& name)
{
    return error == ENOENT && utl_ParentDirectoryExists(name);
}

bool Close(intptr_t handle, uint32_t& error)
{
    return ::close(static_cast<int>(handle)) == 0 || Fail(error);
}

bool SetPosition(intptr_t handle, int64_t position, uint32_t& error)
{
    return ::lseek(static_cast<int>(handle), static_cast<off_t>(position), SEEK_SET) != static_cast<off_t>(-1) ||
           Fail(error);
}

bool GetPosition(intptr_t handle, int64_t& position, uint32_t& error)
{
    const off_t at = ::lseek(static_cast<int>(handle), 0, SEEK_CUR);
    if (at == static_cast<off_t>(-1))
        return Fail(error);
    position = at;
    return true;
}

bool Read(intptr_t handle, char* buffer, int count, int& done, uint32_t& error)
{
    const ssize_t n = ::read(static_cast<int>(handle), buffer, static_cast<size_t>(count));
    if (n < 0)
        return Fail(error);
    done = static_cast<int>(n);
    return true;
}

bool Write(intptr_t handle, const char* buffer, int count, int& done, uint32_t& error)
{
    const ssize_t n = ::write(static_cast<int>(handle), buffer, static_cast<size_t>(count));
    if (n < 0)
        return Fail(error);
    done = static_cast<int>(n);
    return true;
}

bool Flush(intptr_t handle, uint32_t& error)
{
    return ::fsync(static_cast<int>(handle)) == 0 || Fail(error);
}

bool Size(intptr_t handle, int64_t& size, uint32_t& error)
{
    struct stat info;
    if (::fstat(static_cast<int>(handle), &info) != 0)
        return Fail(error);
    size = info.st_size;
    return true;
}

namespace {

// Writes zeros over [from, to): the growth for file systems without an allocation call.
int WriteZeros(int fd, off_t from, off_t to)
{
    static const char zeros[65536] = {};
    while (from < to) {
        const size_t piece = static_cast<size_t>(to - from < off_t(sizeof zeros) ? to - from : off_t(sizeof zeros));
        const ssize_t n = ::pwrite(fd, zeros, piece, from);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return n < 0 ? errno : ENOSPC;
        from += n;
    }
    return 0;
}

}  // namespace

bool SetEnd(intptr_t handle, uint32_t& error)
{
    const int fd = static_cast<int>(handle);
    const off_t at = ::lseek(fd, 0, SEEK_CUR);
    struct stat info;
    if (at == static_cast<off_t>(-1) || ::fstat(fd, &info) != 0)
        return Fail(error);
    if (at <= info.st_size)
        return ::ftruncate(fd, at) == 0 || Fail(error);
    // A growth reserves its blocks now: a full disk then shows before anything is written.
    int rc = ::posix_fallocate(fd, info.st_size, at - info.st_size);
    if (rc == EOPNOTSUPP || rc == EINVAL || rc == ENOSYS)
        rc = WriteZeros(fd, info.st_size, at);
    if (rc == 0)
        return true;
    (void)::ftruncate(fd, info.st_size);  // what was allocated before the failure goes again
    error = static_cast<uint32_t>(rc);
    return false;
}

bool IsDiskFull(uint32_t error)
{
    return error == ENOSPC || error == EFBIG || error == EDQUOT;
}

}  // namespace utl_FileSystem

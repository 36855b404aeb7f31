/// @class utl_File
/// utl_File: the library's raw, unbuffered handle on one operating-system file.
///
/// The file opens lazily, at its first operation (or Open), in one of three access modes, and is
/// positioned by 64-bit offsets. Every failure raises an exception of its own class whose text
/// names the failing step, the system's error text and the file; the object stays usable after a
/// failure (a failed open is tried again by the next operation). The handle closes at
/// destruction; a failed close raises utl_FileExceptionClose from the destructor, except while
/// another exception is already propagating (a second exception would end the program).
///
/// Sharing modes follow the table of utl_FileSharing on Windows; POSIX systems have no mandatory
/// sharing control, so there they are advisory and grant everything.
///
/// Test hook: utl_FileTestFaults(kind, n, error) makes the n-th system call of one kind from now
/// fail as if the system had returned `error`, so the ordinary failure path runs with its own
/// exception and text; it also counts the calls of every kind until utl_FileTestFaultsOff. The
/// state is per process and atomic; while the hook is off a call costs one relaxed load.
///
/// Thread rule: one object, one thread at a time. Objects on one file are independent handles:
/// the sharing modes say what they may do together (Windows). The test hook is process-wide:
/// it counts and fails the calls of every thread.
#ifndef UTL_FILE_H
#define UTL_FILE_H

#include <cstdint>

#include "cow/cow_String.h"
#include "nex/nex_Exception.h"
#include "utl/utl_FileOffset.h"
#include "zul_BasicExport.h"

/// The access modes of a file.
enum utl_FileAccess {
    utl_FileAccessRead = 0,    ///< read; the file must exist
    utl_FileAccessUpdate = 1,  ///< read and write; the file must exist
    utl_FileAccessWrite = 2,   ///< read and write; always created anew
};

/// Sharing granted to other openers. The default differs by access mode: with read access
/// others may read and write, with update or write access others may only read.
enum utl_FileSharing {
    utl_FileShareDefault = 0,
    utl_FileShareRead = 1,
    utl_FileShareReadWrite = 2,
};

/// Opening the file failed (other than for a missing file).
NEX_TEXT_EXCEPTION(utl_FileExceptionOpen, nex_TextException, 0x30301u);
/// The file to open for reading or update does not exist.
NEX_TEXT_EXCEPTION(utl_FileExceptionNoFile, nex_TextException, 0x30302u);
/// Closing the handle failed.
NEX_TEXT_EXCEPTION(utl_FileExceptionClose, nex_TextException, 0x30303u);
/// Setting the position failed.
NEX_TEXT_EXCEPTION(utl_FileExceptionSeek, nex_TextException, 0x30304u);
/// Asking for the position failed.
NEX_TEXT_EXCEPTION(utl_FileExceptionLocation, nex_TextException, 0x30305u);
/// Flushing failed, or the file is open for reading only.
NEX_TEXT_EXCEPTION(utl_FileExceptionFlush, nex_TextException, 0x30306u);
/// Reading failed.
NEX_TEXT_EXCEPTION(utl_FileExceptionRead, nex_TextException, 0x30307u);
/// Writing failed, or the file is open for reading only.
NEX_TEXT_EXCEPTION(utl_FileExceptionWrite, nex_TextException, 0x30308u);
/// A short write, or an extension that does not fit (a full disk or a file-size limit).
NEX_TEXT_EXCEPTION(utl_FileExceptionFull, nex_TextException, 0x30309u);
/// Asking for the size failed.
NEX_TEXT_EXCEPTION(utl_FileExceptionSize, nex_TextException, 0x3030Au);
/// Extending the file failed for a reason other than a full disk.
NEX_TEXT_EXCEPTION(utl_FileExceptionExtend, nex_TextException, 0x3030Bu);

/// The kinds of system call the test hook counts and fails.
enum utl_FileCallEnm {
    utl_FileCallOpen,    ///< opening or creating a file (lock files included)
    utl_FileCallRead,    ///< error 0: a short read (half the bytes asked for, no error)
    utl_FileCallWrite,   ///< error 0: a short write (half the bytes written), as on a full disk
    utl_FileCallSeek,    ///< setting or asking for the position
    utl_FileCallSize,    ///< asking for the size
    utl_FileCallExtend,  ///< setting the end of file and allocating up to it
    utl_FileCallFlush,
    utl_FileCallClose,   ///< the handle is released all the same, as systems do
    utl_FileCallDelete,  ///< deleting a file (the container's save and lock files)
    utl_FileCallKinds
};

/// Starts counting (every count from 0) and arms: the n-th call of `kind` from now fails with the
/// system error code `error` (errno values on POSIX systems, Win32 codes on Windows). n <= 0 only
/// counts.
ZUL_BASIC_API void utl_FileTestFaults(utl_FileCallEnm kind, long n, uint32_t error);
/// Calls of `kind` counted since utl_FileTestFaults.
ZUL_BASIC_API long utl_FileTestCalls(utl_FileCallEnm kind);
/// Whether the armed failure has happened.
ZUL_BASIC_API bool utl_FileTestFaultFired();
/// Stops counting and disarms.
ZUL_BASIC_API void utl_FileTestFaultsOff();

class ZUL_BASIC_API utl_File {
public:
    utl_File();
    utl_File(const cow_String& name, utl_FileAccess access, utl_FileSharing sharing = utl_FileShareDefault);
    ~utl_File() noexcept(false);
    utl_File(const utl_File&) = delete;
    utl_File& operator=(const utl_File&) = delete;

    /// Replaces name and modes, then Init (an already open handle stays).
    void Open(const cow_String& name, utl_FileAccess access, utl_FileSharing sharing = utl_FileShareDefault);
    /// Opens the file if it is not open yet.
    void Init();
    /// Closes the file if it is open (a later use opens it again); a failed close raises
    /// utl_FileExceptionClose.
    void Close();

    void Seek(const utl_FileOffset& position);
    utl_FileOffset Location();
    /// Bytes read: 0 at the end of the file; a short read is no error.
    int Read(char* buffer, int count);
    /// Bytes written; fewer than asked raises utl_FileExceptionFull.
    int Write(const char* buffer, int count);
    /// As Write, but a short write is returned rather than raised.
    int WriteShortAllowed(const char* buffer, int count);
    void Flush();
    utl_FileOffset FileSize();
    /// Makes the file `size` bytes long with its space allocated, so that a full disk shows here
    /// rather than in later writes; the position is left where it was. POSIX systems reserve the
    /// new bytes with posix_fallocate (writing zeros where the file system cannot), and a growth
    /// that fails leaves the old size; on Windows setting the end of file allocates. A full disk
    /// or a file-size limit raises utl_FileExceptionFull, other failures utl_FileExceptionExtend.
    void Extend(const utl_FileOffset& size);

    const cow_String& Name() const { return m_name; }
    utl_FileAccess Access() const { return m_access; }
    bool IsOpen() const { return m_opened != 0; }

private:
    intptr_t OpenRead(const cow_String& name);
    intptr_t OpenUpdate(const cow_String& name);
    intptr_t OpenWrite(const cow_String& name);
    intptr_t OpenWith(const cow_String& name, int access, const char* step, const char* missingStep);
    void RejectReadOnly(bool flush);

    int32_t m_opened;
    intptr_t m_handle;
    cow_String m_name;
    utl_FileAccess m_access;
    utl_FileSharing m_sharing;
};

#endif

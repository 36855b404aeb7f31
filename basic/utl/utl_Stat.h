/// @class utl_Stat
/// utl_Stat: the status of one file-system entry, by path, runtime descriptor or system handle.
///
/// A missing entry is a normal answer (Found() is false, Error() holds the system's "not found"
/// code) and ThrowIfFileNotFound turns it into nex_SystemErrorException when the caller needs the
/// entry. Every other failure - a missing directory on the way, no access, a descriptor without a
/// handle - raises nex_SystemErrorException carrying the system error at once.
///
/// Times are seconds since 1970-01-01 UTC, rounded to the nearest second.
/// POSIX systems: the file index is the inode number, the creation time is the status-change
/// time (no creation time is kept), the normal flag (a Windows attribute) stays clear, and a
/// "handle" is a descriptor.
/// Thread rule: made on any thread; a plain value afterwards.
#ifndef UTL_STAT_H
#define UTL_STAT_H

#include <cstdint>

#include "cow/cow_String.h"
#include "nex/nex_Exception.h"
#include "omi/omi_SystemErrorCode.h"
#include "zul_BasicExport.h"

class ZUL_BASIC_API utl_Stat {
public:
    explicit utl_Stat(const cow_String& path);
    explicit utl_Stat(int descriptor);
    explicit utl_Stat(void* handle);

    /// Raises nex_SystemErrorException with the stored error when the entry was not found.
    void ThrowIfFileNotFound() const;

    uint64_t Size() const { return m_size; }
    uint64_t FileIndex() const { return m_fileIndex; }
    uint32_t Links() const { return m_links; }
    int64_t LastAccessTime() const { return m_accessTime; }
    int64_t LastWriteTime() const { return m_writeTime; }
    int64_t CreationTime() const { return m_creationTime; }
    bool IsDirectory() const { return m_isDir != 0; }
    bool IsNormal() const { return m_isNormal != 0; }
    bool Found() const { return m_found != 0; }
    const omi_SystemErrorCode& Error() const { return m_error; }

    /// Seconds since 1970 from a count of 100-nanosecond steps since 1601, to the nearest second.
    static int64_t SecondsFromFileTime(uint64_t ticksSince1601);

private:
    void Clear();
    /// Platform parts.
    void ReadPath(const cow_String& path);
    void ReadDescriptor(int descriptor);
    void ReadHandle(void* handle);
    [[noreturn]] static void Raise(const omi_SystemErrorCode& error);

    uint64_t m_size;
    uint64_t m_fileIndex;
    uint32_t m_links;
    int64_t m_accessTime;
    int64_t m_writeTime;
    int64_t m_creationTime;
    uint8_t m_isDir;
    uint8_t m_isNormal;
    uint8_t m_found;
    omi_SystemErrorCode m_error;
};

/// Exceptions for callers that report file-status problems in their own words.
NEX_TEXT_EXCEPTION(utl_StatException, nex_TextException, 0x30101u);

/// For callers' reports: a file that cannot be accessed.
NEX_TEXT_EXCEPTION(utl_StatCantAccessFile, nex_TextException, 0x30102u);

/// For callers' reports: a system error of no known kind.
NEX_TEXT_EXCEPTION(utl_StatUnknownSystemError, nex_TextException, 0x30103u);

#endif

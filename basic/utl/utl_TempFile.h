/// @class utl_TempFile
/// utl_TempFile: one scratch file in the run's scratch directory, deleted when the object dies.
///
/// The name is chosen at the first operation that needs it: the directory is the tmpdir option
/// of the command line, else the environment variable SCRATCH, else TMPDIR (each only when it
/// names an existing directory); in it the template "ZulTempFileXXXXXX" with the six X replaced
/// so that the name does not exist yet; then the extension ("dat" and ".dat" both give one dot).
/// Create() makes the file exclusively, readable and writable by its owner only.
///
/// A failed naming leaves the object unnamed, so the next operation tries again. The destructor
/// of a named object closes the file and deletes it (errors ignored), created or not.
/// Thread rule: one object, one thread at a time.
#ifndef UTL_TEMPFILE_H
#define UTL_TEMPFILE_H

#include <cstdint>

#include "cow/cow_String.h"
#include "nex/nex_Exception.h"
#include "zul_BasicExport.h"

/// The base of the scratch-file exceptions.
NEX_TEXT_EXCEPTION(utl_TempFileException, nex_TextException, 0x30701u);

/// No scratch file name could be chosen (no directory qualifies, or no unique name was found).
class ZUL_BASIC_API utl_TempFileCantExc : public utl_TempFileException {
    NEX_EXCEPTION_CLASS(utl_TempFileCantExc, 0x30702u)
public:
    utl_TempFileCantExc();
};

/// The scratch file cannot be created or opened.
class ZUL_BASIC_API utl_TempFileOpenExc : public utl_TempFileException {
    NEX_EXCEPTION_CLASS(utl_TempFileOpenExc, 0x30703u)
public:
    utl_TempFileOpenExc(const cow_String& name, const char* systemText);
};

/// A named scratch directory that is not a directory.
/// Part of the interface for callers; no operation of utl_TempFile raises these two.
class ZUL_BASIC_API utl_TempFileDirExc : public utl_TempFileException {
    NEX_EXCEPTION_CLASS(utl_TempFileDirExc, 0x30704u)
public:
    explicit utl_TempFileDirExc(const cow_String& directory);
};

/// No directory for scratch files qualifies; like utl_TempFileDirExc, for callers only.
class ZUL_BASIC_API utl_TempFileNoDirExc : public utl_TempFileException {
    NEX_EXCEPTION_CLASS(utl_TempFileNoDirExc, 0x30705u)
public:
    utl_TempFileNoDirExc();
};

class ZUL_BASIC_API utl_TempFile {
public:
    explicit utl_TempFile(const cow_String& extension);
    ~utl_TempFile();
    utl_TempFile(const utl_TempFile&) = delete;
    utl_TempFile& operator=(const utl_TempFile&) = delete;

    /// The extension until the name is chosen, then the full path.
    const cow_String& Name() const { return m_name; }
    /// Free bytes on the directory's volume (names the file first if needed).
    uint64_t AvailableSpace();
    /// Creates the file exclusively; utl_TempFileOpenExc when it exists or cannot be made.
    void Create();
    /// Opens an existing file for reading and writing; false when it does not exist.
    bool OpenIfPresent();
    /// As OpenIfPresent, but a missing file raises utl_TempFileOpenExc.
    void Open();
    void Close();
    /// The runtime-library descriptor, -1 when closed.
    int Descriptor() const { return m_fd; }

    /// The directory chosen for scratch files ("" when none qualifies), with its trailing
    /// separator.
    static cow_String ScratchDirectory();

private:
    void NameIfNeeded();

    int32_t m_named;
    uint64_t m_available;
    cow_String m_name;
    int32_t m_fd;
};

#endif

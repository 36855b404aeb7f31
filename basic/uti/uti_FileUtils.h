/// @file
/// Checking, before use, that a file named by a user can be opened the way the caller intends.
///
/// uti_PreCheckFile answers the file's absolute path name in portable form, or raises
/// uti_PreCheckFileException naming the first problem found with a reason code:
/// @code{.unparsed}
///   1 "Empty filename"                 5 "<path>: Directory not found"
///   2 "<path>: Invalid filename"       6 "<path>: Permission denied" (not readable)
///   3 "<path>: Is a directory"         7 "<path>: Permission denied" (not writeable)
///   4 "<path>: File not found"         8 "<directory>: Directory permission denied"
/// @endcode
/// A name without an extension gets defaultExtension.
/// Thread rule: uti_PreCheckFile resolves the name as utl_FilePath does: no thread may change the
/// environment or the current directory meanwhile.
#ifndef UTI_FILEUTILS_H
#define UTI_FILEUTILS_H

#include "cls/cls_FieldHandle.h"
#include "cow/cow_String.h"
#include "nex/nex_Exception.h"
#include "zul_BasicExport.h"

/// How the caller means to open the file.
enum uti_AccessModeEnm {
    uti_ReadMode = 0,       ///< must exist and be readable
    uti_WriteMode = 1,      ///< new: valid name in a writeable directory; existing: writeable
    uti_ReadWriteMode = 2,  ///< must exist, be writeable and readable
};

/// A file that cannot be opened the way the caller intends (uti_FileUtils.h lists the reasons).
class ZUL_BASIC_API uti_PreCheckFileException : public nex_TextException {
    NEX_EXCEPTION_CLASS(uti_PreCheckFileException, 0x20101u)
public:
    /// The reason codes 1 to 8, as uti_FileUtils.h lists them.
    enum Reason {
        EmptyName = 1,
        InvalidName = 2,
        IsDirectory = 3,
        FileNotFound = 4,
        DirectoryNotFound = 5,
        NotReadable = 6,
        NotWriteable = 7,
        DirectoryNotWriteable = 8,
    };
    /// The text is made from the reason and the path.
    uti_PreCheckFileException(int reason, const cow_String& path);
    /// Persistence: the message (m_Value, field 0) and then the reason (m_Reason, field 1).
    ///@{
    explicit uti_PreCheckFileException(const cls_ReadVisitor& reader);
    void DBWrite(const cls_WriteVisitor& writer) const override;
    ///@}
    int GetReason() const { return m_Reason; }

    static const cls_FieldHandle& ReasonField();

    static atr_String TextFor(int reason, const cow_String& path);

protected:
    int m_Reason;
};

ZUL_BASIC_API cow_String uti_PreCheckFile(const cow_String& name, uti_AccessModeEnm mode,
                                          const cow_String& defaultExtension);

#endif

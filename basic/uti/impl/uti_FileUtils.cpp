#include "uti/uti_FileUtils.h"

#include "atr/atr_translate.h"
#include "cls/cls_Visitor.h"
#include "utl/utl_FilePath.h"

namespace {

const char* const kTexts[] = {
    nullptr,
    "Empty filename",
    "%s: Invalid filename",
    "%s: Is a directory",
    "%s: File not found",
    "%s: Directory not found",
    "%s: Permission denied",
    "%s: Permission denied",
    "%s: Directory permission denied",
};

utl_FilePath PortablePath(const cow_String& name)
{
    utl_FilePath path(name, cow_String());
    path.Portable();
    return path;
}

bool HasInvalidCharacter(const cow_String& fileName)
{
    for (const char* p = fileName.c_str(); *p; ++p)
        for (const char* bad = "/\\:*?\"<>|"; *bad; ++bad)
            if (*p == *bad)
                return true;
    return false;
}

}  // namespace

uti_PreCheckFileException::uti_PreCheckFileException(int reason, const cow_String& path)
    : nex_TextException(TextFor(reason, path)), m_Reason(reason)
{
}

uti_PreCheckFileException::uti_PreCheckFileException(const cls_ReadVisitor& reader)
    : nex_TextException(reader), m_Reason(reader.ReadInt(ReasonField()))
{
}

void uti_PreCheckFileException::DBWrite(const cls_WriteVisitor& writer) const
{
    nex_TextException::DBWrite(writer);
    writer.WriteInt(ReasonField(), m_Reason);
}

const cls_FieldHandle& uti_PreCheckFileException::ReasonField()
{
    static const cls_FieldHandle field(1, "m_Reason");
    return field;
}

atr_String uti_PreCheckFileException::TextFor(int reason, const cow_String& path)
{
    if (reason < 1 || reason > 8)
        return atr_String("Unknown file precheck error");
    return atr_translate(kTexts[reason]).Arg(path).Result();
}

cow_String uti_PreCheckFile(const cow_String& name, uti_AccessModeEnm mode, const cow_String& defaultExtension)
{
    if (name.IsEmpty())
        NEX_RAISE(uti_PreCheckFileException, uti_PreCheckFileException::EmptyName, name);

    utl_FilePath file = PortablePath(name);
    const cow_String directory = file.AbsoluteDirectoryPath();
    if (file.IsDir())
        NEX_RAISE(uti_PreCheckFileException, uti_PreCheckFileException::IsDirectory, file.AbsolutePathName());
    if (file.Extension().IsEmpty()) {
        cow_String withExtension(directory);
        withExtension += file.FileName();
        withExtension += defaultExtension;
        file = PortablePath(withExtension);
    }
    if (!PortablePath(directory).IsDir())
        NEX_RAISE(uti_PreCheckFileException, uti_PreCheckFileException::DirectoryNotFound, directory);

    const cow_String path = file.AbsolutePathName();
    const bool exists = file.Exists();
    switch (mode) {
    case uti_ReadMode:
        if (!exists)
            NEX_RAISE(uti_PreCheckFileException, uti_PreCheckFileException::FileNotFound, path);
        if (!file.IsReadable())
            NEX_RAISE(uti_PreCheckFileException, uti_PreCheckFileException::NotReadable, path);
        break;
    case uti_ReadWriteMode:
        if (!exists)
            NEX_RAISE(uti_PreCheckFileException, uti_PreCheckFileException::FileNotFound, path);
        if (!file.IsWriteable())
            NEX_RAISE(uti_PreCheckFileException, uti_PreCheckFileException::NotWriteable, path);
        if (!file.IsReadable())
            NEX_RAISE(uti_PreCheckFileException, uti_PreCheckFileException::NotReadable, path);
        break;
    case uti_WriteMode:
        if (!exists) {
            if (HasInvalidCharacter(file.FileName()))
                NEX_RAISE(uti_PreCheckFileException, uti_PreCheckFileException::InvalidName, path);
            if (!file.IsWriteable())
                NEX_RAISE(uti_PreCheckFileException, uti_PreCheckFileException::DirectoryNotWriteable, directory);
        } else if (!file.IsWriteable()) {
            NEX_RAISE(uti_PreCheckFileException, uti_PreCheckFileException::NotWriteable, path);
        }
        break;
    }
    return path;
}

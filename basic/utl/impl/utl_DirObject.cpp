#include "utl/utl_DirObject.h"

#include "aio/aio_ostream.h"
#include "atr/atr_translate.h"
#include "nex/nex_Exception.h"
#include "pnt/pnt_DebugMarks.h"
#include "typ/typ_DebugFlags.h"
#include "utl/impl/utl_DirListing.h"
#include "utl/utl_DirPathUtils.h"

namespace {

struct Collector {
    cow_String directory;
    cow_List<utl_FilePath>* files;
    cow_List<utl_FilePath>* dirs;
    int* fileCount;
    int* dirCount;
};

void Collect(void* context, const char* name, bool isDirectory)
{
    Collector& c = *static_cast<Collector*>(context);
    cow_String full(c.directory);
    full += UTL_NATIVE_SEPARATOR;
    full += name;
    const utl_FilePath entry(full, cow_String());
    if (isDirectory) {
        c.dirs->Prepend(entry);
        ++*c.dirCount;
    } else {
        c.files->Prepend(entry);
        ++*c.fileCount;
    }
}

cow_List<utl_FilePath> Containing(const cow_List<utl_FilePath>& entries, const cow_String& text)
{
    cow_List<utl_FilePath> out;
    for (int i = 0; i < entries.Count(); ++i) {
        const cow_String name = entries[i].FileName();
        if (name.Find(text.c_str(), 0) >= 0)
            out.Append(utl_FilePath(name, cow_String()));
    }
    return out;
}

}  // namespace

utl_DirObject::utl_DirObject(const utl_FilePath& dir) : m_dir(dir), m_fileCount(0), m_dirCount(0)
{
    Collector collector{m_dir.AbsolutePathName(), &m_files, &m_dirs, &m_fileCount, &m_dirCount};
    utl_DirListing::ForEachEntry(collector.directory, &Collect, &collector);
}

cow_List<utl_FilePath> utl_DirObject::GetAllEntries() const
{
    cow_List<utl_FilePath> all(m_files);
    all.Append(m_dirs);
    return all;
}

cow_List<utl_FilePath> utl_DirObject::PrefixMatchFilenames(const cow_String& text) const
{
    return Containing(m_files, text);
}

cow_List<utl_FilePath> utl_DirObject::PrefixMatchDirNames(const cow_String& text) const
{
    return Containing(m_dirs, text);
}

cow_List<utl_FilePath> utl_DirObject::PrefixMatchAllEntries(const cow_String& text) const
{
    return Containing(GetAllEntries(), text);
}

cow_List<utl_FilePath> utl_DirObject::FindFileNamesWithExtension(const cow_String& ext) const
{
    cow_List<utl_FilePath> out;
    for (int i = 0; i < m_files.Count(); ++i) {
        const cow_String name = m_files[i].FileName();
        const int dot = name.rfind(".");
        if (dot >= 0 && name.Substr(dot) == ext)
            out.Append(utl_FilePath(name, cow_String()));
    }
    return out;
}

utl_DiskAttributes::utl_DiskAttributes(const cow_String& path)
{
    utl_FilePath resolved(path, cow_String());
    resolved.Portable();
    const int mark = resolved.AbsolutePathName().Find(":/");
    if (mark <= 0) {
        m_root = path;
    } else {
        m_root = path.Substr(0, mark + 1);
        m_root += "\\";
    }
}

utl_DiskAttributes::~utl_DiskAttributes() {}

namespace {

void PrintSpace(const char* what, const cow_String& root, unsigned long long bytes, unsigned long long unitFrom)
{
    const char* unit = "kbytes";
    unsigned long long value = bytes >> 10;
    if (unitFrom >= 1048577ull) {
        unit = "MB";
        value = bytes >> 20;
    } else if (unitFrom < 1025ull) {
        unit = "bytes";
        value = bytes;
    }
    aio_cout().print(atr_translate("\n %s %s =%llu %s \n").Arg(what).Arg(root).Arg(value).Arg(unit).Result().c_str());
}

}  // namespace

unsigned long long utl_DiskAttributes::GetFreeDiskSpace() const
{
    uint64_t totalFree = 0, callerFree = 0;
    uint32_t error = 0;
    if (!utl_DirListing::FreeSpace(m_root, totalFree, callerFree, error))
        NEX_RAISE(nex_TextException,
                  atr_translate("error: %u:  could not get free space for \"%s\"\n").Arg(error).Arg(m_root).Result());
    if (typ_DebugFlags::GetDebugFlags(3u) >= 3) {
        aio_cout().print(pnt_DebugStartMark());
        PrintSpace("Free space on drive", m_root, totalFree, totalFree);
        PrintSpace("Free space to caller", m_root, callerFree, totalFree);
        aio_cout().print(pnt_DebugEndMark()).flush();
    }
    return callerFree;
}

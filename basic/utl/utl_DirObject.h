/// @class utl_DirObject
/// utl_DirObject: a snapshot of one directory's entries, with simple name filters.
///
/// The constructor reads the directory at once; later changes on disk are not seen. "." and ".."
/// are listed (as subdirectories). A directory that cannot be listed gives an empty snapshot.
/// Entries are full paths (directory + separator + name); filter results are made from the bare
/// file name, so they resolve against the current directory.
/// Thread rule: one object, one thread at a time; the lists it returns share its storage
/// (cow_List's rule). Reading the directory and the filters resolve names as utl_FilePath does:
/// no thread may change the environment or the current directory meanwhile.
#ifndef UTL_DIROBJECT_H
#define UTL_DIROBJECT_H

#include "cow/cow_List.h"
#include "utl/utl_FilePath.h"
#include "zul_BasicExport.h"

class ZUL_BASIC_API utl_DirObject {
public:
    explicit utl_DirObject(const utl_FilePath& dir);

    cow_List<utl_FilePath> GetAllFileNames() const { return m_files; }
    cow_List<utl_FilePath> GetAllDirNames() const { return m_dirs; }
    /// Files, then subdirectories.
    cow_List<utl_FilePath> GetAllEntries() const;

    /// Entries whose file name contains `text` anywhere (not only at the start).
    ///@{
    cow_List<utl_FilePath> PrefixMatchFilenames(const cow_String& text) const;
    cow_List<utl_FilePath> PrefixMatchDirNames(const cow_String& text) const;
    cow_List<utl_FilePath> PrefixMatchAllEntries(const cow_String& text) const;
    ///@}
    /// Plain files whose name from its last "." (dot included) equals ext, byte for byte.
    cow_List<utl_FilePath> FindFileNamesWithExtension(const cow_String& ext) const;

    int FileCount() const { return m_fileCount; }
    int DirCount() const { return m_dirCount; }

private:
    utl_FilePath m_dir;
    int m_fileCount;
    int m_dirCount;
    cow_List<utl_FilePath> m_files;
    cow_List<utl_FilePath> m_dirs;
};

/// utl_DiskAttributes: free space on the volume of a path.
class ZUL_BASIC_API utl_DiskAttributes {
public:
    /// The root asked about: for a path with a drive (C:/x) the drive and a backslash, otherwise
    /// the path as given.
    explicit utl_DiskAttributes(const cow_String& path);
    ~utl_DiskAttributes();

    /// Bytes available to the calling user. With debug level 3 or more on facility 3 (utl) the
    /// total free space and the free space to the caller are printed to standard output between
    /// the debug marks. A failure raises nex_TextException
    /// (`"error: <code>:  could not get free space for "<root>""`).
    unsigned long long GetFreeDiskSpace() const;
    const cow_String& Root() const { return m_root; }

private:
    cow_String m_root;
};

#endif

/// @class utl_DirPathUtils
/// utl_DirPathUtils: trailing separators of directory paths, and the directory test.
///
/// The separator is the platform's native one: a backslash on Windows, "/" on POSIX systems.
/// Thread rule: no state; any thread.
#ifndef UTL_DIRPATHUTILS_H
#define UTL_DIRPATHUTILS_H

#include "cow/cow_String.h"
#include "zul_BasicExport.h"

#if defined(_WIN32)
#define UTL_NATIVE_SEPARATOR '\\'
#else
#define UTL_NATIVE_SEPARATOR '/'
#endif

class ZUL_BASIC_API utl_DirPathUtils {
public:
    /// Whether the path names an existing directory (a missing entry is simply false).
    static bool CheckDirectory(const cow_String& path);
    /// Removes exactly one trailing separator, if there is one. A drive root is trimmed too:
    /// `C:\` becomes `C:`.
    static cow_String TrimSeparator(const cow_String& path);
    /// Appends a separator unless the path already ends with one.
    static cow_String AddSeparator(const cow_String& path);
};

#endif

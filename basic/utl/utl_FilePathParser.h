/// @class utl_FilePathParser
/// utl_FilePathParser: takes a path string apart without touching the file system.
///
/// Pure string rules, identical on every platform, for Windows-style and Unix-style paths:
/// - Windows style: empty, or and of | and of control characters 1-31.
/// - Unix style: contains "/"; or, having no backslash, drive or host, is a bare name (a bare name
///   is both). Windows style is tested first everywhere: a path of both styles is taken apart by
///   the Windows rules.
/// - Drive: "c" for "C:..." (lower case), 0 otherwise. Host: "srv" for "\\srv\...".
/// - The local part (Windows): the path without a drive, or from the backslash after the host.
/// - DirName: up to (not including) the last separator of the local part (Windows) or of the path
///   (Unix); the drive is never part of it. The file part follows the last separator (the whole
///   local part, or the whole path, when there is none); BaseName is the file part up to its last
///   ".", Extension what follows that dot (without it).
/// - HasBaseName is false for a file part such as ".profile" (its only dot is first).
///
/// Thread rule: no state; any thread.
#ifndef UTL_FILEPATHPARSER_H
#define UTL_FILEPATHPARSER_H

#include "cow/cow_String.h"
#include "zul_BasicExport.h"

class ZUL_BASIC_API utl_FilePathParser {
public:
    static bool IsWindowsStyle(const cow_String& path);
    static bool IsUnixStyle(const cow_String& path);

    static bool HasDrive(const cow_String& path);
    static char Drive(const cow_String& path);
    static bool HasHost(const cow_String& path);
    static cow_String Host(const cow_String& path);

    static bool HasDirName(const cow_String& path);
    static cow_String DirName(const cow_String& path);
    static bool HasBaseName(const cow_String& path);
    static cow_String BaseName(const cow_String& path);
    static bool HasExtension(const cow_String& path);
    static cow_String Extension(const cow_String& path);
};

#endif

// utl_FilePath: a file name resolved once against a directory.
//
// Setting a path expands environment variables (%NAME% first, then $NAME; in the directory,
// then in the name), chooses the base directory and keeps the name split into directory part,
// base name and extension:
//   PathName()         = directory part + base name + extension
//   AbsolutePathName() = base directory + PathName()
// The base directory and the directory part end with a separator when they are not empty.
// A URL (a scheme followed by "://") or a path under the virtual folder "Network connectors" is
// kept verbatim as the base name, with its flag set; the file tests are then false.
//
// Platforms: on Windows the native separator is the backslash ("/" is the portable one) and the
// rules know drives ("C:"), per-drive current directories and UNC names ("\\host\share"). On POSIX
// systems "/" is both native and portable, and drive or UNC text is ordinary characters.
//
// Expansion stops after a fixed number of replacements (a variable whose value names itself
// cannot loop). Environment lookup is not safe against another thread changing the environment:
// resolve paths on one thread at a time.
#ifndef UTL_FILEPATH_H
#define UTL_FILEPATH_H

#include <cstdint>

#include "cow/cow_String.h"
#include "zul_BasicExport.h"

class ZUL_BASIC_API utl_FilePath {
public:
    enum { MaxExpansions = 64 };

    utl_FilePath();
    utl_FilePath(const cow_String& name, const cow_String& directory);
    void SetFilePath(const cow_String& name, const cow_String& directory);

    cow_String PathName() const;
    cow_String AbsolutePathName() const;
    cow_String AbsoluteDirectoryPath() const;
    cow_String FileName() const;

    const cow_String& BaseDirectory() const { return m_baseDir; }
    const cow_String& DirectoryPart() const { return m_dirPart; }
    const cow_String& BaseName() const { return m_baseName; }
    const cow_String& Extension() const { return m_extension; }
    bool IsUrl() const { return m_isUrl != 0; }
    bool IsNetworkConnector() const { return m_isNetworkConnector != 0; }

    // Backslashes to slashes (Portable) or back (Native) in the base directory, directory part
    // and base name, not in the extension; nothing for URL and network-connector values, and
    // nothing on POSIX systems, where "/" is both forms.
    utl_FilePath& Portable();
    utl_FilePath& Native();

    // Tests on the absolute path name; false for URL and network-connector values, and false
    // (not an error) when the status cannot be read, e.g. under a missing directory.
    bool Exists() const;
    bool IsReadable() const;
    bool IsWriteable() const;
    bool IsExecutable() const;
    bool IsDir() const;

    // Expands %NAME% references, then $NAME references, as SetFilePath does.
    static cow_String ExpandEnvironment(const cow_String& text);
    // A scheme ("http", "file", ...) followed by "://".
    static bool LooksLikeUrl(const cow_String& text);

private:
    bool IsPlainPath() const { return !m_isUrl && !m_isNetworkConnector; }

    uint8_t m_isUrl;
    uint8_t m_isNetworkConnector;
    cow_String m_baseDir;
    cow_String m_dirPart;
    cow_String m_baseName;
    cow_String m_extension;
};

#endif

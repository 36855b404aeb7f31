/// @class utl_FilePath
/// utl_FilePath: a file name resolved once against a directory.
///
/// Setting a path expands environment variables (\%NAME% first, then $NAME; in the directory,
/// then in the name), chooses the base directory and keeps the name split into directory part,
/// base name and extension:
/// @code{.unparsed}
///   PathName()         = directory part + base name + extension
///   AbsolutePathName() = base directory + PathName()
/// @endcode
/// The base directory and the directory part end with a separator when they are not empty.
/// A URL (a scheme followed by "://") or a path under the virtual folder "Network connectors" is
/// kept verbatim as the base name, with its flag set; the file tests are then false.
///
/// Platforms: on Windows the native separator is the backslash ("/" is the portable one) and the
/// rules know drives ("C:"), per-drive current directories and UNC names (`"\\host\share"`). On POSIX
/// systems "/" is both native and portable, and drive or UNC text is ordinary characters.
///
/// Expansion stops after a fixed number of replacements (a variable whose value names itself
/// cannot loop).
///
/// Choosing the base directory. An absolute name has none: POSIX "/x"; Windows `"C:\x"`,
/// `"\\host\x"` and the drive-less `"\xy"` (a rooted name needs three characters: `"\x"` counts as
/// relative). "C:x" takes the current directory of drive C: and loses its "C:". Any other name
/// takes: the directory when it is absolute ("/d"; `"C:\d"`, `"\\host\d"`); for a directory "C:..."
/// that is not, the current directory of its drive (`C:\` for a name that begins with `\`); for a
/// directory `"\d"`, the current directory's drive in front of it; else the current directory (a
/// relative directory is not used). On Windows that name then loses its leading separators (`\`
/// alone stays). A drive without a current directory gives an empty base.
/// Then trailing separators of the name go (not a lone separator, not the root of `C:\`); the
/// directory part runs to the last separator, and the rest splits at its last dot, the extension
/// keeping the dot; an empty rest reads as ".".
///
/// Examples (name, directory => base directory | directory part | base name | extension). The
/// current directory is /home/u on POSIX systems; on Windows it is `C:\work`, which is also the
/// current directory of drive C:, and the variable W is set to `"C:\w"`.
/// @code{.unparsed}
///   POSIX
///     "a/b.txt",        ""      => "/home/u/" | "a/"    | "b"              | ".txt"
///     "b.txt",          "/data" => "/data/"   | ""      | "b"              | ".txt"
///     "b.txt",          "rel"   => "/home/u/" | ""      | "b"              | ".txt"
///     "/etc/hosts",     "/data" => ""         | "/etc/" | "hosts"          | ""
///     "a/b//",          ""      => "/home/u/" | "a/"    | "b"              | ""
///     "archive.tar.gz", ""      => "/home/u/" | ""      | "archive.tar"    | ".gz"
///     ".profile",       ""      => "/home/u/" | ""      | ""               | ".profile"
///     "/",              ""      => ""         | "/"     | ""               | "."
///     "",               ""      => "/home/u/" | ""      | ""               | "."
///     "C:\x",           ""      => "/home/u/" | ""      | "C:\x"           | ""
///     "http://h/a.txt", "/data" => ""         | ""      | "http://h/a.txt" | ""
///   Windows ("/" reads as "\")
///     "a/b.txt",        ""         => "C:\work\"  | "a\"        | "b"   | ".txt"
///     "b.txt",          "D:\data"  => "D:\data\"  | ""          | "b"   | ".txt"
///     "b.txt",          "\\srv\sh" => "\\srv\sh\" | ""          | "b"   | ".txt"
///     "b.txt",          "\data"    => "C:\data\"  | ""          | "b"   | ".txt"
///     "b.txt",          "C:"       => "C:\work\"  | ""          | "b"   | ".txt"
///     "b.txt",          "rel"      => "C:\work\"  | ""          | "b"   | ".txt"
///     "C:foo\bar",      "D:\data"  => "C:\work\"  | "foo\"      | "bar" | ""
///     "C:\foo\bar.txt", "D:\data"  => ""          | "C:\foo\"   | "bar" | ".txt"
///     "\foo\bar",       "D:\data"  => ""          | "\foo\"     | "bar" | ""
///     "\\srv\sh\f.txt", ""         => ""          | "\\srv\sh\" | "f"   | ".txt"
///     "\x",             "D:\data"  => "D:\data\"  | ""          | "x"   | ""
///     "\x",             "C:"       => "C:\"       | ""          | "x"   | ""
///     "$W\b.txt",       ""         => ""          | "C:\w\"     | "b"   | ".txt"
///     "C:\",            ""         => ""          | "C:\"       | ""    | "."
///     "a\b\\",          ""         => "C:\work\"  | "a\"        | "b"   | ""
/// @endcode
///
/// Thread rule: one object, one thread at a time. Resolving (the constructor, SetFilePath,
/// ExpandEnvironment) reads the environment and the current directory without a lock: no thread
/// may change either while another resolves.
#ifndef UTL_FILEPATH_H
#define UTL_FILEPATH_H

#include <cstdint>

#include "cow/cow_String.h"
#include "zul_BasicExport.h"

class ZUL_BASIC_API utl_FilePath {
public:
    /// The most replacements one expansion makes.
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

    /// Backslashes to slashes (Portable) or back (Native) in the base directory, directory part
    /// and base name, not in the extension; nothing for URL and network-connector values, and
    /// nothing on POSIX systems, where "/" is both forms.
    ///@{
    utl_FilePath& Portable();
    utl_FilePath& Native();
    ///@}

    /// Tests on the absolute path name; false for URL and network-connector values, and false
    /// (not an error) when the status cannot be read, for example under a missing directory.
    ///@{
    bool Exists() const;
    bool IsReadable() const;
    bool IsWriteable() const;
    bool IsExecutable() const;
    bool IsDir() const;
    ///@}

    /// Expands \%NAME% references, then $NAME references, as SetFilePath does.
    static cow_String ExpandEnvironment(const cow_String& text);
    /// A scheme ("http", "file", ...) followed by "://".
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

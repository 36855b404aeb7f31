#include "utl/utl_FilePath.h"

#include <cstdlib>

#include "sys/impl/sys_Os.h"
#include "utl/impl/utl_FilePathPlatform.h"
#include "utl/utl_HostInfo.h"
#include "utl/utl_Stat.h"

namespace P = utl_FilePathPlatform;

namespace {

const char kNetworkConnectors[] = "Network connectors";

// Creates the file new, exclusively, and removes it at once: can a file be made here?
bool CanCreate(const cow_String& path)
{
    uint32_t error = 0;
    if (!sys_CreateExclusive(path.c_str(), nullptr, 0, error))
        return false;
    sys_RemoveFile(path.c_str(), error);
    return true;
}

bool IsLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool StartsWithDrive(const cow_String& s)
{
    return P::kHasDrives && s.Length() >= 2 && IsLetter(s[0]) && s[1] == ':';
}

bool IsUnc(const cow_String& s)
{
    return P::kHasDrives && s.Length() >= 3 && s[0] == '\\' && s[1] == '\\' && s[2] != '\\';
}

bool IsDriveAbsolute(const cow_String& s)
{
    return StartsWithDrive(s) && s.Length() >= 3 && s[2] == '\\';
}

bool IsAbsoluteName(const cow_String& s)
{
    if (!P::kHasDrives)
        return s.Length() >= 1 && s[0] == '/';
    if (s.Length() < 3)
        return false;
    const bool rooted = s[0] == '\\' && s[1] != '\\' && s[1] != ':';
    return rooted || IsUnc(s) || IsDriveAbsolute(s);
}

cow_String WithTrailingSeparator(const cow_String& s)
{
    if (s.IsEmpty() || s[s.Length() - 1] == P::kNativeSeparator)
        return s;
    cow_String out(s);
    out += P::kNativeSeparator;
    return out;
}

void ReplaceChar(cow_String& s, char from, char to)
{
    if (s.Find(from) < 0)
        return;
    for (int i = 0; i < s.Length(); ++i)
        if (s[i] == from)
            s[i] = to;
}

// Replaces the reference at [start, end) by the variable's value when it is set.
bool ReplaceIfSet(cow_String& text, int start, int end, const cow_String& name)
{
    const char* value = std::getenv(name.c_str());
    if (!value)
        return false;
    text.Replace(start, end - start, value);
    return true;
}

void ExpandWindowsForm(cow_String& text, int& budget)
{
    int from = 0;
    while (budget > 0) {
        const int open = text.Find("%", from);
        if (open < 0)
            return;
        const int close = text.Find("%", open + 1);
        if (close < 0)
            return;  // an unmatched "%" ends the expansion
        if (ReplaceIfSet(text, open, close + 1, text.Substr(open + 1, close - open - 1))) {
            --budget;
            from = 0;
        } else {
            from = close + 1;
        }
    }
}

void ExpandUnixForm(cow_String& text, int& budget)
{
    int from = 0;
    while (budget > 0) {
        const int dollar = text.Find("$", from);
        if (dollar < 0)
            return;
        int end = dollar + 1;
        if (end < text.Length() && IsLetter(text[end])) {
            while (end < text.Length() && (IsLetter(text[end]) || IsDigit(text[end])))
                ++end;
            if (ReplaceIfSet(text, dollar, end, text.Substr(dollar + 1, end - dollar - 1))) {
                --budget;
                from = 0;
                continue;
            }
        }
        from = end;
    }
}

bool StartsWithNetworkConnectors(const cow_String& s)
{
    return s.StartsWith(kNetworkConnectors);
}

// "Network connectors", then "/" and the rest of the name after that folder (and one "/").
cow_String NetworkConnectorName(const cow_String& name)
{
    cow_String rest = name;
    if (StartsWithNetworkConnectors(rest)) {
        rest = rest.Substr(static_cast<int>(sizeof(kNetworkConnectors)) - 1);
        if (rest.StartsWith("/"))
            rest = rest.Substr(1);
    }
    cow_String out(kNetworkConnectors);
    if (!rest.IsEmpty())
        out.append("/").append(rest);
    return out;
}

// Native separators, environment references expanded.
cow_String NativeExpanded(const cow_String& text)
{
    cow_String out(text);
    if (P::kNativeSeparator != '/')
        ReplaceChar(out, '/', P::kNativeSeparator);
    return utl_FilePath::ExpandEnvironment(out);
}

// The base directory of a name that is neither absolute nor drive-relative.
cow_String BaseForRelativeName(const cow_String& name, const cow_String& directory)
{
    if (directory.Length() >= 3 && (IsUnc(directory) || IsDriveAbsolute(directory)))
        return directory;
    if (!P::kHasDrives && directory.StartsWith("/"))
        return directory;
    if (StartsWithDrive(directory))
        return name.StartsWith("\\") ? directory.Substr(0, 2) : P::DriveCurrentDirectory(directory[0]);
    if (P::kHasDrives && directory.StartsWith("\\")) {
        cow_String base = utl_getcwd().Substr(0, 2);
        base += directory;
        return base;
    }
    return utl_getcwd();
}

// Chooses the base directory (without its trailing separator) and takes off the name what it
// covers: a drive-relative name ("C:x") loses its drive and, on Windows, a name below the root
// ("\x") its leading separators ("\" alone stays).
cow_String ChooseBaseDirectory(cow_String& name, const cow_String& directory)
{
    if (IsAbsoluteName(name))
        return cow_String();
    if (StartsWithDrive(name) && !IsDriveAbsolute(name)) {
        const cow_String base = P::DriveCurrentDirectory(name[0]);
        name = name.Substr(2);
        return base;
    }
    const cow_String base = BaseForRelativeName(name, directory);
    if (P::kHasDrives && name.StartsWith("\\")) {
        int skip = 0;
        while (skip < name.Length() && name[skip] == '\\')
            ++skip;
        name = skip == name.Length() ? cow_String("\\") : name.Substr(skip);
    }
    return base;
}

// The name's end: a bare drive gets its root; trailing separators go, but a drive root and a
// lone separator stay.
void TrimName(cow_String& name)
{
    const char sep = P::kNativeSeparator;
    if (P::kHasDrives && name.Length() == 2 && StartsWithDrive(name)) {
        name += sep;
    } else if (name.Length() > 1 && name[name.Length() - 1] == sep && !(name.Length() == 3 && IsDriveAbsolute(name))) {
        int end = name.Length();
        while (end > 1 && name[end - 1] == sep)
            --end;
        name = name.Substr(0, end);
    }
}

// Directory part up to the last separator (with it); the rest is the file name, "." when
// empty, split at its last dot into base name and extension (with the dot).
void SplitName(const cow_String& name, cow_String& dirPart, cow_String& baseName, cow_String& extension)
{
    const int lastSep = name.rfind(P::kNativeSeparator);
    cow_String file = name;
    if (lastSep >= 0) {
        dirPart = name.Substr(0, lastSep + 1);
        file = name.Substr(lastSep + 1);
    }
    if (file.IsEmpty())
        file = ".";
    const int dot = file.rfind(".");
    if (dot >= 0) {
        baseName = file.Substr(0, dot);
        extension = file.Substr(dot);
    } else {
        baseName = file;
    }
}

}  // namespace

utl_FilePath::utl_FilePath() : m_isUrl(0), m_isNetworkConnector(0) {}

utl_FilePath::utl_FilePath(const cow_String& name, const cow_String& directory) : m_isUrl(0), m_isNetworkConnector(0)
{
    SetFilePath(name, directory);
}

cow_String utl_FilePath::ExpandEnvironment(const cow_String& text)
{
    cow_String out(text);
    int budget = MaxExpansions;
    ExpandWindowsForm(out, budget);
    ExpandUnixForm(out, budget);
    return out;
}

bool utl_FilePath::LooksLikeUrl(const cow_String& text)
{
    const int mark = text.Find("://");
    if (mark <= 0 || !IsLetter(text[0]))
        return false;
    for (int i = 1; i < mark; ++i) {
        const char c = text[i];
        if (!IsLetter(c) && !IsDigit(c) && c != '+' && c != '-' && c != '.')
            return false;
    }
    return true;
}

void utl_FilePath::SetFilePath(const cow_String& nameIn, const cow_String& directoryIn)
{
    m_isUrl = m_isNetworkConnector = 0;
    m_baseDir = m_dirPart = m_baseName = m_extension = cow_String();

    if (LooksLikeUrl(nameIn) || LooksLikeUrl(directoryIn)) {
        m_isUrl = 1;
        m_baseName = nameIn;
        return;
    }
    if (StartsWithNetworkConnectors(nameIn) || StartsWithNetworkConnectors(directoryIn)) {
        m_isNetworkConnector = 1;
        m_baseName = NetworkConnectorName(nameIn);
        return;
    }
    const cow_String directory = NativeExpanded(directoryIn);
    cow_String name = NativeExpanded(nameIn);
    m_baseDir = WithTrailingSeparator(ChooseBaseDirectory(name, directory));
    TrimName(name);
    SplitName(name, m_dirPart, m_baseName, m_extension);
}

cow_String utl_FilePath::PathName() const
{
    cow_String path(m_dirPart);
    path += m_baseName;
    path += m_extension;
    return path;
}

cow_String utl_FilePath::AbsolutePathName() const
{
    if (!IsPlainPath())
        return PathName();
    cow_String path(m_baseDir);
    const char sep = P::kNativeSeparator;
    const bool doubled = !m_baseDir.IsEmpty() && m_baseDir[m_baseDir.Length() - 1] == sep && m_dirPart.Length() > 0 &&
                         m_dirPart[0] == sep;
    path += doubled ? m_dirPart.Substr(1) : m_dirPart;
    path += m_baseName;
    path += m_extension;
    return path;
}

cow_String utl_FilePath::AbsoluteDirectoryPath() const
{
    cow_String path(m_baseDir);
    path += m_dirPart;
    return path;
}

cow_String utl_FilePath::FileName() const
{
    cow_String name(m_baseName);
    name += m_extension;
    return name;
}

utl_FilePath& utl_FilePath::Portable()
{
    if (IsPlainPath() && P::kNativeSeparator != '/') {
        ReplaceChar(m_baseDir, '\\', '/');
        ReplaceChar(m_dirPart, '\\', '/');
        ReplaceChar(m_baseName, '\\', '/');
    }
    return *this;
}

utl_FilePath& utl_FilePath::Native()
{
    if (IsPlainPath() && P::kNativeSeparator != '/') {
        ReplaceChar(m_baseDir, '/', P::kNativeSeparator);
        ReplaceChar(m_dirPart, '/', P::kNativeSeparator);
        ReplaceChar(m_baseName, '/', P::kNativeSeparator);
    }
    return *this;
}

namespace {

// A status that cannot be read (a missing directory on the way, no access) reads as absent.
bool StatAnswer(const cow_String& path, bool wantDirectory)
{
    try {
        const utl_Stat st(path);
        return wantDirectory ? st.IsDirectory() : st.Found();
    } catch (const nex_SystemErrorException&) {
        return false;
    }
}

}  // namespace

bool utl_FilePath::Exists() const
{
    return IsPlainPath() && StatAnswer(AbsolutePathName(), false);
}

bool utl_FilePath::IsDir() const
{
    return IsPlainPath() && StatAnswer(AbsolutePathName(), true);
}

bool utl_FilePath::IsReadable() const
{
    return IsPlainPath() && P::CanRead(AbsolutePathName());
}

bool utl_FilePath::IsWriteable() const
{
    if (!IsPlainPath())
        return false;
    const cow_String path = AbsolutePathName();
    return Exists() ? P::CanWrite(path) : CanCreate(path);
}

bool utl_FilePath::IsExecutable() const
{
    return IsPlainPath() && P::IsExecutable(AbsolutePathName(), m_extension);
}

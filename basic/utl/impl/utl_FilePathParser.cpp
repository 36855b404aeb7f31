#include "utl/utl_FilePathParser.h"

namespace {

bool IsLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

enum Style { Windows, Unix, Neither };

Style StyleOf(const cow_String& path)
{
    if (utl_FilePathParser::IsWindowsStyle(path))
        return Windows;
    if (utl_FilePathParser::IsUnixStyle(path))
        return Unix;
    return Neither;
}

// Where the host ends (the backslash after it), or -1 for a path without a host.
int HostEnd(const cow_String& path)
{
    if (path.Length() < 3 || path[0] != '\\' || path[1] != '\\')
        return -1;
    const int end = path.Find("\\", 2);
    return end > 2 ? end : -1;
}

// The part of a Windows-style path after its drive or host.
cow_String LocalPart(const cow_String& path)
{
    if (utl_FilePathParser::Drive(path))
        return path.Substr(2);
    const int hostEnd = HostEnd(path);
    return hostEnd >= 0 ? path.Substr(hostEnd) : path;
}

struct Split {
    bool hasSeparator;
    cow_String dir;
    cow_String file;
};

Split SplitPath(const cow_String& path)
{
    Split split{false, cow_String(), path};
    Style style = StyleOf(path);
    if (style == Neither)
        return split;
    const cow_String scope = style == Windows ? LocalPart(path) : path;
    const int last = scope.rfind(style == Windows ? "\\" : "/");
    split.file = scope;
    if (last >= 0) {
        split.hasSeparator = true;
        split.dir = scope.Substr(0, last);
        split.file = scope.Substr(last + 1);
    }
    return split;
}

}  // namespace

bool utl_FilePathParser::IsWindowsStyle(const cow_String& path)
{
    for (const char* p = path.c_str(); *p; ++p) {
        const unsigned char c = static_cast<unsigned char>(*p);
        if (c < 32 || c == '<' || c == '>' || c == '"' || c == '/' || c == '|')
            return false;
    }
    return true;
}

bool utl_FilePathParser::IsUnixStyle(const cow_String& path)
{
    if (path.Find("/") >= 0)
        return true;
    return !(path.Find("\\") >= 0 || HasDrive(path) || HasHost(path));
}

char utl_FilePathParser::Drive(const cow_String& path)
{
    if (path.Length() >= 2 && path[1] == ':' && IsLetter(path[0]))
        return static_cast<char>(path[0] | 0x20);
    return 0;
}

bool utl_FilePathParser::HasDrive(const cow_String& path)
{
    return IsWindowsStyle(path) && Drive(path) != 0;
}

cow_String utl_FilePathParser::Host(const cow_String& path)
{
    const int end = HostEnd(path);
    return end >= 0 ? path.Substr(2, end - 2) : cow_String();
}

bool utl_FilePathParser::HasHost(const cow_String& path)
{
    return IsWindowsStyle(path) && HostEnd(path) >= 0;
}

bool utl_FilePathParser::HasDirName(const cow_String& path)
{
    return SplitPath(path).hasSeparator;
}

cow_String utl_FilePathParser::DirName(const cow_String& path)
{
    return SplitPath(path).dir;
}

bool utl_FilePathParser::HasBaseName(const cow_String& path)
{
    const cow_String file = SplitPath(path).file;
    const int dot = file.rfind(".");
    return dot > 0 || (dot < 0 && !file.IsEmpty());
}

cow_String utl_FilePathParser::BaseName(const cow_String& path)
{
    const cow_String file = SplitPath(path).file;
    const int dot = file.rfind(".");
    return dot >= 0 ? file.Substr(0, dot) : file;
}

bool utl_FilePathParser::HasExtension(const cow_String& path)
{
    return SplitPath(path).file.Find(".") >= 0;
}

cow_String utl_FilePathParser::Extension(const cow_String& path)
{
    const cow_String file = SplitPath(path).file;
    const int dot = file.rfind(".");
    return dot >= 0 ? file.Substr(dot + 1) : cow_String();
}

// utl_FilePathParser and utl_FilePath on arbitrary names and directories, with environment
// variables that refer to themselves and to each other. The parser's pieces must be pieces of
// the path; resolution must terminate, keep its documented shape (separators at the end of the
// directory parts, the absolute name ending with the file name) and be stable when the
// absolute name is resolved again.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <cstdlib>
#include <string>

#include <fuzzer/FuzzedDataProvider.h>

#include "utl/utl_FilePath.h"
#include "utl/utl_FilePathParser.h"
#include "zul_FuzzSupport.h"

extern char** environ;

namespace {

using zul_fuzz::Cow;
using zul_fuzz::Str;

size_t g_longestValue = 0;

bool Contains(const std::string& whole, const std::string& piece)
{
    return whole.find(piece) != std::string::npos;
}

void CheckParser(const std::string& path)
{
    const cow_String p = Cow(path);
    const bool windows = utl_FilePathParser::IsWindowsStyle(p);
    const bool unix = utl_FilePathParser::IsUnixStyle(p);
    ZUL_FUZZ_CHECK(!windows || path.find_first_of("<>\"/|") == std::string::npos);
    ZUL_FUZZ_CHECK(path.find('/') == std::string::npos || unix);

    const char drive = utl_FilePathParser::Drive(p);
    ZUL_FUZZ_CHECK(utl_FilePathParser::HasDrive(p) == (windows && drive != 0));
    ZUL_FUZZ_CHECK(drive == 0 || (path.size() >= 2 && path[1] == ':' && (drive >= 'a' && drive <= 'z') &&
                                  (path[0] == drive || path[0] == drive - 'a' + 'A')));

    const std::string host = Str(utl_FilePathParser::Host(p));
    ZUL_FUZZ_CHECK(host.empty() || (path.compare(0, 2, "\\\\") == 0 && path.compare(2, host.size(), host) == 0 &&
                                    path.size() > host.size() + 2 && path[host.size() + 2] == '\\'));
    ZUL_FUZZ_CHECK(utl_FilePathParser::HasHost(p) == (windows && !host.empty()));

    const std::string dir = Str(utl_FilePathParser::DirName(p));
    const std::string base = Str(utl_FilePathParser::BaseName(p));
    const std::string ext = Str(utl_FilePathParser::Extension(p));
    ZUL_FUZZ_CHECK(utl_FilePathParser::HasDirName(p) || dir.empty() || !(windows || unix));
    ZUL_FUZZ_CHECK(utl_FilePathParser::HasBaseName(p) || base.empty());
    ZUL_FUZZ_CHECK(utl_FilePathParser::HasExtension(p) || ext.empty());
    ZUL_FUZZ_CHECK(Contains(path, dir) && Contains(path, base) && Contains(path, ext));
    // The file part is base name, dot, extension, and it ends the path.
    if (utl_FilePathParser::HasExtension(p)) {
        const std::string tail = base + "." + ext;
        ZUL_FUZZ_CHECK(path.size() >= tail.size() && path.compare(path.size() - tail.size(), tail.size(), tail) == 0);
        ZUL_FUZZ_CHECK(ext.find_first_of("/.") == std::string::npos);
        ZUL_FUZZ_CHECK(!windows || ext.find('\\') == std::string::npos);
    }
    ZUL_FUZZ_CHECK(base.find('/') == std::string::npos);
}

void CheckResolution(const std::string& name, const std::string& directory)
{
    utl_FilePath path(Cow(name), Cow(directory));
    if (path.IsUrl() || path.IsNetworkConnector()) {
        ZUL_FUZZ_CHECK(!path.Exists() && !path.IsDir());
        return;
    }
    const std::string baseDir = Str(path.BaseDirectory());
    const std::string dirPart = Str(path.DirectoryPart());
    const std::string file = Str(path.FileName());
    const std::string absolute = Str(path.AbsolutePathName());
    ZUL_FUZZ_CHECK(baseDir.empty() || baseDir.back() == '/');
    ZUL_FUZZ_CHECK(dirPart.empty() || dirPart.back() == '/');
    ZUL_FUZZ_CHECK(Str(path.PathName()) == dirPart + file);
    ZUL_FUZZ_CHECK(absolute.size() >= file.size() &&
                   absolute.compare(absolute.size() - file.size(), file.size(), file) == 0);
    ZUL_FUZZ_CHECK(Str(path.BaseName()).find('/') == std::string::npos);
    const std::string ext = Str(path.Extension());
    ZUL_FUZZ_CHECK(ext.find('/') == std::string::npos);

    // POSIX has one separator form: both conversions change nothing.
    utl_FilePath copy(path);
    copy.Portable().Native();
    ZUL_FUZZ_CHECK(Str(copy.AbsolutePathName()) == absolute);

    // An absolute name with nothing left to expand resolves to itself.
    if (!absolute.empty() && absolute[0] == '/' && absolute.find_first_of("%$") == std::string::npos &&
        !utl_FilePath::LooksLikeUrl(Cow(absolute))) {
        utl_FilePath again(Cow(absolute), cow_String());
        ZUL_FUZZ_CHECK(Str(again.AbsolutePathName()) == absolute);
    }
    path.Exists();
    path.IsDir();
}

void CheckExpansion(const std::string& text)
{
    const std::string expanded = Str(utl_FilePath::ExpandEnvironment(Cow(text)));
    if (text.find_first_of("%$") == std::string::npos)
        ZUL_FUZZ_CHECK(expanded == text);
    // Each of the bounded number of expansions adds at most the longest value in the environment.
    ZUL_FUZZ_CHECK(expanded.size() <= text.size() + utl_FilePath::MaxExpansions * g_longestValue);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    zul_fuzz::Initialize();
    // Values that expand forever unless expansion is bounded, and some ordinary ones.
    ::setenv("ZF_SELF", "%ZF_SELF%", 1);
    ::setenv("ZF_TWICE", "$ZF_TWICE/$ZF_TWICE", 1);
    ::setenv("ZF_A", "%ZF_B%x", 1);
    ::setenv("ZF_B", "$ZF_A", 1);
    ::setenv("ZF_PCT", "%", 1);
    ::setenv("ZF_DOLLAR", "$", 1);
    ::setenv("ZF_DIR", "/tmp/zf dir/", 1);
    ::setenv("ZF_REL", "rel/sub", 1);
    ::setenv("ZF_EMPTY", "", 1);
    ::setenv("ZF_DRIVE", "C:\\data", 1);
    ::setenv("ZF_URL", "http://host/x", 1);
    for (char** e = environ; *e; ++e)
        g_longestValue = std::max(g_longestValue, std::strlen(*e));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider in(data, size);
    // Paths are zero-terminated texts: nothing after a zero byte belongs to them.
    const std::string name = in.ConsumeRandomLengthString(256).c_str();
    const std::string directory = in.ConsumeRandomLengthString(256).c_str();
    zul_fuzz::Expect<>::Run([&] {
        CheckParser(name);
        CheckParser(directory);
        CheckExpansion(name);
        CheckResolution(name, directory);
    });
    return 0;
}

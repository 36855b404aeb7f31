// Paths resolved against a directory: expansion, base directory, splitting, file tests.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "utl/utl_FilePath.h"
#include "zul_TestSupport.h"

namespace {

using zul_test::SetEnvironment;

// Both forms, %NAME% and $NAME; unset references stay; a self-reference stops expanding.
TEST(UtlFilePath, EnvironmentExpansion)
{
    SetEnvironment("ZUL_T_DIR", "base");
    SetEnvironment("ZUL_T_UNSET", nullptr);
    EXPECT_EQ(utl_FilePath::ExpandEnvironment("%ZUL_T_DIR%\\a.txt"), "base\\a.txt");
    EXPECT_EQ(utl_FilePath::ExpandEnvironment("%ZUL_T_UNSET%%ZUL_T_DIR%"), "%ZUL_T_UNSET%base")
        << "an unset reference stays and the search goes on after it";
    EXPECT_EQ(utl_FilePath::ExpandEnvironment("100% sure"), "100% sure");
    SetEnvironment("ZULTHOME", "/home/me");
    EXPECT_EQ(utl_FilePath::ExpandEnvironment("$ZULTHOME/x"), "/home/me/x");
    EXPECT_EQ(utl_FilePath::ExpandEnvironment("$1x"), "$1x");
    EXPECT_EQ(utl_FilePath::ExpandEnvironment("a$"), "a$");
    SetEnvironment("ZULTNOPE", nullptr);
    EXPECT_EQ(utl_FilePath::ExpandEnvironment("$ZULTNOPE/y"), "$ZULTNOPE/y");

    SetEnvironment("ZULTLOOP", "$ZULTLOOP.");
    const cow_String out = utl_FilePath::ExpandEnvironment("$ZULTLOOP");
    EXPECT_TRUE(out.StartsWith("$ZULTLOOP"));
    EXPECT_EQ(out.Length(), 9 + utl_FilePath::MaxExpansions);
    SetEnvironment("ZUL_T_LOOP", "%ZUL_T_LOOP%");
    EXPECT_EQ(utl_FilePath::ExpandEnvironment("%ZUL_T_LOOP%"), "%ZUL_T_LOOP%");
}

TEST(UtlFilePath, UrlsAndNetworkConnectorsAreKeptVerbatim)
{
    utl_FilePath url("http://host/a/b.txt", "");
    EXPECT_TRUE(url.IsUrl());
    EXPECT_EQ(url.PathName(), "http://host/a/b.txt");
    EXPECT_EQ(url.AbsolutePathName(), "http://host/a/b.txt");
    EXPECT_FALSE(url.Exists());
    EXPECT_FALSE(utl_FilePath::LooksLikeUrl("C:\\x://y"));

    utl_FilePath net("Network connectors/share/f", "");
    EXPECT_TRUE(net.IsNetworkConnector());
    EXPECT_EQ(net.PathName(), "Network connectors/share/f");
    EXPECT_FALSE(net.IsReadable());
}

TEST(UtlFilePath, SplitsIntoDirectoryBaseNameAndExtension)
{
    zul_test::TempDir dir;
    const cow_String base(dir.Path().c_str());
    const std::string dirPart = std::string("sub") + zul_test::kDirSeparator;
    const std::string name = dirPart + "data.tar.gz";
    utl_FilePath p(name.c_str(), base);
    EXPECT_EQ(p.DirectoryPart(), dirPart.c_str());
    EXPECT_EQ(p.BaseName(), "data.tar");
    EXPECT_EQ(p.Extension(), ".gz");
    EXPECT_EQ(p.FileName(), "data.tar.gz");
    EXPECT_EQ(p.PathName(), name.c_str());
    EXPECT_TRUE(p.BaseDirectory().StartsWith(base.c_str()));
    EXPECT_EQ(p.AbsolutePathName(), (p.BaseDirectory().c_str() + name).c_str());
}

TEST(UtlFilePath, AbsoluteNameIgnoresTheDirectory)
{
    zul_test::TempDir dir;
    const std::string file = dir.File("x.inp");
    utl_FilePath p(file.c_str(), "somewhere-else");
    EXPECT_EQ(p.BaseDirectory(), "");
    EXPECT_EQ(p.AbsolutePathName(), file.c_str());
}

TEST(UtlFilePath, RelativeOrEmptyDirectoryMeansTheCurrentDirectory)
{
    utl_FilePath p("f.txt", "");
    EXPECT_GT(p.BaseDirectory().Length(), 0);
    utl_FilePath q("f.txt", "relative");
    EXPECT_EQ(q.BaseDirectory(), p.BaseDirectory());
}

TEST(UtlFilePath, EmptyFileNameBecomesDotAndTrailingSeparatorsGo)
{
    zul_test::TempDir dir;
    const std::string sep(1, zul_test::kDirSeparator);
    utl_FilePath p(("a" + sep + "b" + sep + sep).c_str(), dir.Path().c_str());
    EXPECT_EQ(p.DirectoryPart(), ("a" + sep).c_str());
    EXPECT_EQ(p.FileName(), "b");
    utl_FilePath empty("", dir.Path().c_str());
    EXPECT_EQ(empty.FileName(), ".");
    EXPECT_EQ(empty.BaseName(), "") << "\".\" splits at its dot like any file name";
    EXPECT_EQ(empty.Extension(), ".");
}

#if defined(_WIN32)
TEST(UtlFilePath, WindowsDrivesAndPortableForm)
{
    utl_FilePath driveOnly("C:", "");  // takes drive C's current directory as base
    EXPECT_EQ(driveOnly.PathName(), ".");
    EXPECT_TRUE(driveOnly.BaseDirectory().EndsWith("\\"));
    utl_FilePath unc("\\\\host\\share\\f.txt", "");
    EXPECT_EQ(unc.BaseDirectory(), "");
    EXPECT_EQ(unc.DirectoryPart(), "\\\\host\\share\\");
    utl_FilePath p("sub/f.txt", "C:\\base");
    EXPECT_EQ(p.AbsolutePathName(), "C:\\base\\sub\\f.txt");
    p.Portable();
    EXPECT_EQ(p.AbsolutePathName(), "C:/base/sub/f.txt");
    p.Native();
    EXPECT_EQ(p.AbsolutePathName(), "C:\\base\\sub\\f.txt");
    utl_FilePath rooted("\\top\\f.txt", "C:\\base");
    EXPECT_EQ(rooted.AbsolutePathName(), "\\top\\f.txt");
}
#else
TEST(UtlFilePath, PosixHasNoDrivesAndOneSeparator)
{
    utl_FilePath p("C:x.txt", "/base");
    EXPECT_EQ(p.BaseDirectory(), "/base/");
    EXPECT_EQ(p.FileName(), "C:x.txt");
    utl_FilePath q("a\\b.txt", "/base");
    EXPECT_EQ(q.DirectoryPart(), "") << "a backslash is an ordinary character";
    q.Portable();
    EXPECT_EQ(q.FileName(), "a\\b.txt");
}
#endif

TEST(UtlFilePath, FileTests)
{
    zul_test::TempDir dir;
    zul_test::WriteFileBytes(dir.File("present.txt"), "x");
    const cow_String base(dir.Path().c_str());
    EXPECT_TRUE(utl_FilePath("present.txt", base).Exists());
    EXPECT_TRUE(utl_FilePath("present.txt", base).IsReadable());
    EXPECT_TRUE(utl_FilePath("present.txt", base).IsWriteable());
    EXPECT_FALSE(utl_FilePath("present.txt", base).IsDir());
    EXPECT_FALSE(utl_FilePath("absent.txt", base).Exists());
    EXPECT_TRUE(utl_FilePath("absent.txt", base).IsWriteable()) << "a new file could be made here";
    EXPECT_FALSE(utl_FilePath("absent.txt", base).Exists()) << "the probe leaves nothing behind";
    EXPECT_FALSE(utl_FilePath("missing/absent.txt", base).Exists());
    EXPECT_TRUE(utl_FilePath(".", base).IsDir());
    zul_test::WriteFileBytes(dir.File("RUN.EXE"), "MZ");
    EXPECT_FALSE(utl_FilePath("RUN.EXE", base).IsExecutable());
}

}  // namespace

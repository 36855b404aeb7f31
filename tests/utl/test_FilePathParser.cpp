// Path strings taken apart by the pure string rules (the same on every platform).
#include <gtest/gtest.h>

#include "utl/utl_FilePathParser.h"

namespace {

using P = utl_FilePathParser;

TEST(UtlFilePathParser, StyleRules)
{
    EXPECT_TRUE(P::IsWindowsStyle(""));
    EXPECT_TRUE(P::IsWindowsStyle("C:\\a\\b.txt"));
    EXPECT_FALSE(P::IsWindowsStyle("a/b.txt")) << "a slash is never Windows style";
    EXPECT_FALSE(P::IsWindowsStyle("a|b"));
    EXPECT_FALSE(P::IsWindowsStyle("a\tb"));
    EXPECT_TRUE(P::IsUnixStyle("a/b.txt"));
    EXPECT_FALSE(P::IsUnixStyle("a\\b"));
    EXPECT_FALSE(P::IsUnixStyle("C:b"));
    EXPECT_TRUE(P::IsUnixStyle("name.txt"));
    EXPECT_TRUE(P::IsWindowsStyle("name.txt")) << "a bare name is both";
}

TEST(UtlFilePathParser, DrivesAndHosts)
{
    EXPECT_EQ(P::Drive("C:\\x"), 'c');
    EXPECT_TRUE(P::HasDrive("d:x"));
    EXPECT_EQ(P::Drive("1:\\x"), 0);
    EXPECT_FALSE(P::HasDrive("C:/x")) << "not Windows style";
    EXPECT_EQ(P::Host("\\\\server\\share\\f.txt"), "server");
    EXPECT_TRUE(P::HasHost("\\\\server\\share"));
    EXPECT_FALSE(P::HasHost("\\\\server")) << "no backslash after the host";
    EXPECT_FALSE(P::HasHost("\\\\\\x"));
    EXPECT_EQ(P::Host("\\\\server"), "");
}

TEST(UtlFilePathParser, DirectoryNames)
{
    EXPECT_EQ(P::DirName("C:\\a\\b.txt"), "\\a");
    EXPECT_EQ(P::DirName("C:\\b.txt"), "");
    EXPECT_TRUE(P::HasDirName("C:\\b.txt"));
    EXPECT_EQ(P::DirName("a/b/c"), "a/b");
    EXPECT_EQ(P::DirName("\\\\srv\\share\\d\\f"), "\\share\\d");
    EXPECT_FALSE(P::HasDirName("plain"));
    EXPECT_FALSE(P::HasDirName("a<\\b")) << "a path of neither style has no directory";
}

TEST(UtlFilePathParser, BaseNamesAndExtensions)
{
    EXPECT_EQ(P::Extension("a.tar.gz"), "gz");
    EXPECT_EQ(P::BaseName("a.tar.gz"), "a.tar");
    EXPECT_EQ(P::BaseName("C:\\dir.d\\file"), "file");
    EXPECT_FALSE(P::HasExtension("C:\\dir.d\\file"));
    EXPECT_EQ(P::Extension("x/y.d/z"), "");
    EXPECT_FALSE(P::HasBaseName(".profile"));
    EXPECT_TRUE(P::HasExtension(".profile"));
    EXPECT_EQ(P::Extension(".profile"), "profile");
    EXPECT_FALSE(P::HasBaseName("dir\\"));
    EXPECT_EQ(P::BaseName("C:file.txt"), "file") << "the drive is not part of the file";
}

}  // namespace

// Trailing separators and the directory test, written once per platform separator.
#include <gtest/gtest.h>

#include <cstring>

#include "utl/utl_DirPathUtils.h"
#include "zul_TestSupport.h"

namespace {

#if defined(_WIN32)
const char* const kRoot = "C:\\";
const char* const kDir = "C:\\dir\\";
const char* const kDirTrimmed = "C:\\dir";
#else
const char* const kRoot = "/";
const char* const kDir = "/tmp/dir/";
const char* const kDirTrimmed = "/tmp/dir";
#endif

TEST(UtlDirPathUtils, TrimRemovesOneSeparatorAndAddAppendsOneWhenMissing)
{
    EXPECT_EQ(utl_DirPathUtils::TrimSeparator(kDir), kDirTrimmed);
    EXPECT_EQ(utl_DirPathUtils::TrimSeparator(kDirTrimmed), kDirTrimmed);
    const cow_String root = utl_DirPathUtils::TrimSeparator(kRoot);
    EXPECT_EQ(root.Length(), static_cast<int>(std::strlen(kRoot)) - 1) << "a root loses its separator too";
    EXPECT_EQ(utl_DirPathUtils::TrimSeparator(""), "");
    EXPECT_EQ(utl_DirPathUtils::AddSeparator(kDirTrimmed), kDir);
    EXPECT_EQ(utl_DirPathUtils::AddSeparator(kDir), kDir);
    EXPECT_EQ(utl_DirPathUtils::AddSeparator("").Length(), 1);
}

TEST(UtlDirPathUtils, CheckDirectory)
{
    zul_test::TempDir dir;
    zul_test::WriteFileBytes(dir.File("f"), "x");
    EXPECT_TRUE(utl_DirPathUtils::CheckDirectory(dir.Path().c_str()));
    EXPECT_FALSE(utl_DirPathUtils::CheckDirectory(dir.File("f").c_str()));
    EXPECT_FALSE(utl_DirPathUtils::CheckDirectory(dir.File("missing").c_str()));
}

}  // namespace

// Pre-checks of user-named files: the first problem wins, with its reason and text.
#include <gtest/gtest.h>

#include <string>

#include "uti/uti_FileUtils.h"
#include "zul_TestSupport.h"

namespace {

// The portable form of a native path.
std::string Portable(std::string s)
{
    for (char& c : s)
        if (c == '\\')
            c = '/';
    return s;
}

int ReasonOf(const cow_String& name, uti_AccessModeEnm mode, const char* ext = "")
{
    try {
        uti_PreCheckFile(name, mode, ext);
    } catch (const uti_PreCheckFileException& e) {
        return e.GetReason();
    }
    return 0;
}

TEST(UtiPreCheckFile, ReasonsInOrder)
{
    zul_test::TempDir dir;
    zul_test::WriteFileBytes(dir.File("here.txt"), "x");
    EXPECT_EQ(ReasonOf("", uti_ReadMode), 1);
    EXPECT_EQ(ReasonOf(dir.Path().c_str(), uti_ReadMode), 3);
    EXPECT_EQ(ReasonOf(dir.File("gone.txt").c_str(), uti_ReadMode), 4);
    EXPECT_EQ(ReasonOf(dir.File("gone.txt").c_str(), uti_ReadWriteMode), 4);
    EXPECT_EQ(ReasonOf((dir.File("nodir") + "/f.txt").c_str(), uti_WriteMode), 5);
    EXPECT_EQ(ReasonOf(dir.File("a*b.txt").c_str(), uti_WriteMode), 2);
#if !defined(_WIN32)
    EXPECT_EQ(ReasonOf(dir.File("a:b").c_str(), uti_WriteMode, ".txt"), 2);
#endif
    EXPECT_EQ(ReasonOf(dir.File("here.txt").c_str(), uti_ReadWriteMode), 0);
    EXPECT_EQ(ReasonOf(dir.File("new.txt").c_str(), uti_WriteMode), 0);
}

TEST(UtiPreCheckFile, TextsNameThePath)
{
    zul_test::TempDir dir;
    const std::string missing = dir.File("gone.txt");
    EXPECT_EQ(zul_test::ReportOf<uti_PreCheckFileException>([&] { uti_PreCheckFile(missing.c_str(), uti_ReadMode, ""); }),
              Portable(missing) + ": File not found");
    EXPECT_EQ(uti_PreCheckFileException(1, "x").UserReport(), "Empty filename");
    EXPECT_EQ(uti_PreCheckFileException(8, "d").UserReport(), "d: Directory permission denied");
    EXPECT_EQ(uti_PreCheckFileException(42, "x").UserReport(), "Unknown file precheck error");
}

TEST(UtiPreCheckFile, DefaultExtensionAndPortableResult)
{
    zul_test::TempDir dir;
    zul_test::WriteFileBytes(dir.File("model.inp"), "*HEADING");
    const cow_String checked = uti_PreCheckFile(dir.File("model").c_str(), uti_ReadMode, ".inp");
    EXPECT_EQ(checked, Portable(dir.File("model.inp")).c_str());
    EXPECT_EQ(checked.Find("\\"), -1);
}

}  // namespace

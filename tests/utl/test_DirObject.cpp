// Directory snapshots, their filters, and free disk space.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>

#include "nex/nex_Exception.h"
#include "typ/typ_DebugFlags.h"
#include "utl/utl_DirObject.h"
#include "zul_TestSupport.h"

namespace {

std::set<std::string> Names(const cow_List<utl_FilePath>& entries)
{
    std::set<std::string> out;
    for (int i = 0; i < entries.Count(); ++i)
        out.insert(entries[i].FileName().c_str());
    return out;
}

class UtlDirObject : public ::testing::Test {
protected:
    void SetUp() override
    {
        for (const char* name : {"out.dat", "job_out", "a.inp", "b.INP", "readme"})
            zul_test::WriteFileBytes(m_dir.File(name), "x");
        std::filesystem::create_directory(m_dir.File("sub_out"));
    }
    zul_test::TempDir m_dir;
};

TEST_F(UtlDirObject, ListsFilesAndDirectoriesWithDotEntries)
{
    const utl_DirObject listing(utl_FilePath(m_dir.Path().c_str(), ""));
    EXPECT_EQ(listing.FileCount(), 5);
    EXPECT_EQ(listing.DirCount(), 3) << "\".\" and \"..\" count as subdirectories";
    EXPECT_EQ(Names(listing.GetAllDirNames()), (std::set<std::string>{".", "..", "sub_out"}));
    EXPECT_EQ(listing.GetAllEntries().Count(), 8);
    const cow_List<utl_FilePath> entries = listing.GetAllEntries();
    EXPECT_TRUE(entries[0].AbsolutePathName().StartsWith(m_dir.Path().c_str())) << "entries are full paths";
}

TEST_F(UtlDirObject, FiltersMatchAnywhereAndExtensionsExactly)
{
    const utl_DirObject listing(utl_FilePath(m_dir.Path().c_str(), ""));
    EXPECT_EQ(Names(listing.PrefixMatchFilenames("out")), (std::set<std::string>{"out.dat", "job_out"}));
    EXPECT_EQ(Names(listing.PrefixMatchDirNames("out")), (std::set<std::string>{"sub_out"}));
    EXPECT_EQ(listing.PrefixMatchAllEntries("out").Count(), 3);
    EXPECT_EQ(Names(listing.FindFileNamesWithExtension(".inp")), (std::set<std::string>{"a.inp"}));
    EXPECT_EQ(listing.FindFileNamesWithExtension("inp").Count(), 0);
}

TEST_F(UtlDirObject, UnreadableDirectoryIsAnEmptySnapshot)
{
    const utl_DirObject listing(utl_FilePath(m_dir.File("missing").c_str(), ""));
    EXPECT_EQ(listing.GetAllEntries().Count(), 0);
}

TEST(UtlDiskAttributes, RootFreeSpaceAndFailure)
{
    zul_test::TempDir dir;
    const utl_DiskAttributes here(dir.Path().c_str());
#if defined(_WIN32)
    EXPECT_EQ(utl_DiskAttributes("C:/x/y").Root(), "C:\\");
    // A relative path resolves to "C:/...": the root is the argument's first two characters.
    const utl_DiskAttributes missing("Q9nosuch/x");
    EXPECT_EQ(missing.Root(), "Q9\\");
#else
    EXPECT_EQ(here.Root(), dir.Path().c_str()) << "a path without a drive is asked about as given";
    const utl_DiskAttributes missing((dir.File("no") + "/such/place").c_str());
#endif
    EXPECT_GT(here.GetFreeDiskSpace(), 0ull);
    const std::string report = zul_test::ReportOf<nex_TextException>([&] { missing.GetFreeDiskSpace(); });
    EXPECT_EQ(report.rfind("error: ", 0), 0u) << report;
    EXPECT_NE(report.find(":  could not get free space for \""), std::string::npos) << report;

    typ_DebugFlags::SetDebugFlags("utl", 3);
    testing::internal::CaptureStdout();
    here.GetFreeDiskSpace();
    const std::string printed = testing::internal::GetCapturedStdout();
    typ_DebugFlags::SetDebugFlags("utl", 0);
    EXPECT_NE(printed.find(" Free space on drive "), std::string::npos) << printed;
    EXPECT_NE(printed.find(" Free space to caller "), std::string::npos) << printed;
}

}  // namespace

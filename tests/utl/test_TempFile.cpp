// Temporary files: the directory chosen, the name's shape, exclusive owner-only creation.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstdlib>
#include <string>

#include "utl/utl_CommandLine.h"
#include "utl/utl_Stat.h"
#include "utl/utl_TempFile.h"
#include "zul_TestSupport.h"

using zul_test::TempDir;
using zul_test::WriteFileBytes;

namespace {

void SetEnv(const char* name, const std::string& value)
{
    zul_test::SetEnvironment(name, value.empty() ? nullptr : value.c_str());
}

std::string GetEnv(const char* name)
{
    const char* v = std::getenv(name);
    return v ? v : "";
}

// Each test chooses SCRATCH, TMPDIR and the tmpdir option itself; all three are restored after.
class TempFileTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        SetEnv("SCRATCH", "");
        SetEnv("TMPDIR", "");
    }
    void TearDown() override
    {
        SetEnv("SCRATCH", m_scratch);
        SetEnv("TMPDIR", m_tmpdir);
        utl_CommandLine::Instance().SetArgsList(cow_1DArrayList<cow_String>());
    }

    std::string Base(const cow_String& name) const
    {
        const std::string s = name.c_str();
        return s.substr(s.find_last_of("/\\") + 1);
    }

    TempDir dir;

private:
    std::string m_scratch = GetEnv("SCRATCH");
    std::string m_tmpdir = GetEnv("TMPDIR");
};

}  // namespace

TEST_F(TempFileTest, WithoutAScratchDirectoryNamingFailsAndCanBeRetried)
{
    utl_TempFile file("dat");
    EXPECT_EQ(zul_test::ReportOf<utl_TempFileCantExc>([&] { file.Create(); }),
              "*** ERROR: Can't create unique temporary file name.");
    EXPECT_STREQ(file.Name().c_str(), "dat");  // still unnamed

    SetEnv("TMPDIR", dir.Path());
    file.Create();
    EXPECT_EQ(std::string(file.Name().c_str()).find(dir.Path()), 0u);
}

TEST_F(TempFileTest, DirectoryChoiceOptionThenScratchThenTmpdir)
{
    TempDir other;
    WriteFileBytes(dir.File("plain"), "x");
    SetEnv("SCRATCH", dir.File("plain"));  // a regular file is skipped
    SetEnv("TMPDIR", other.Path());
    EXPECT_EQ(std::string(utl_TempFile::ScratchDirectory().c_str()).find(other.Path()), 0u);

    SetEnv("SCRATCH", dir.Path());
    const std::string scratch = utl_TempFile::ScratchDirectory().c_str();
    EXPECT_EQ(scratch.find(dir.Path()), 0u);
    EXPECT_EQ(scratch.size(), dir.Path().size() + 1);  // one trailing separator

    TempDir option;
    utl_CommandLine::Instance().SetArgsList(zul_test::Arguments({"-tmpdir", option.Path()}));
    EXPECT_EQ(std::string(utl_TempFile::ScratchDirectory().c_str()).find(option.Path()), 0u);
    // Not a directory: falls through to the environment.
    utl_CommandLine::Instance().SetArgsList(zul_test::Arguments({"-tmpdir", dir.File("plain")}));
    EXPECT_EQ(std::string(utl_TempFile::ScratchDirectory().c_str()).find(dir.Path()), 0u);
}

TEST_F(TempFileTest, NameShapeAndUniqueness)
{
    SetEnv("TMPDIR", dir.Path());
    utl_TempFile a("dat"), b(".dat"), c("");
    a.Create();
    b.Create();
    c.Create();
    const std::string na = Base(a.Name()), nb = Base(b.Name()), nc = Base(c.Name());
    EXPECT_EQ(na.size(), 17u + 4u);
    EXPECT_EQ(na.compare(0, 11, "ZulTempFile"), 0);
    EXPECT_EQ(na.substr(17), ".dat");
    EXPECT_EQ(nb.substr(17), ".dat");
    EXPECT_EQ(nc.size(), 17u);
    EXPECT_NE(na, nb);
    EXPECT_GT(a.AvailableSpace(), 0u);
}

TEST_F(TempFileTest, CreateIsExclusiveOwnerOnlyAndTheFileGoesWithTheObject)
{
    SetEnv("TMPDIR", dir.Path());
    cow_String name;
    {
        utl_TempFile file("tmp");
        EXPECT_FALSE(file.OpenIfPresent());
        const std::string text = zul_test::ReportOf<utl_TempFileOpenExc>([&] { file.Open(); });  // before Create
        EXPECT_EQ(text.find("*** ERROR: Can't create temporary file: " + std::string(file.Name().c_str()) + ", system error: "), 0u)
            << text;
        file.Create();
        EXPECT_GE(file.Descriptor(), 0);
        name = file.Name();
        EXPECT_TRUE(utl_Stat(name).Found());
#ifndef _WIN32
        struct stat st;
        ASSERT_EQ(stat(name.c_str(), &st), 0);
        EXPECT_EQ(st.st_mode & 0777, 0600u);
#endif
        EXPECT_THROW(file.Create(), utl_TempFileOpenExc);  // it exists now
        file.Close();
        EXPECT_EQ(file.Descriptor(), -1);
        EXPECT_TRUE(file.OpenIfPresent());
        file.Open();
    }
    EXPECT_FALSE(utl_Stat(name).Found());
}

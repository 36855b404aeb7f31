// File status by path and descriptor: found, missing, missing directory; file times.
#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <fcntl.h>

#include "utl/utl_Stat.h"
#include "zul_TestSupport.h"

namespace {

TEST(UtlStat, RegularFileAndDirectory)
{
    zul_test::TempDir dir;
    const std::string file = dir.File("data.bin");
    zul_test::WriteFileBytes(file, std::string(1234, 'z'));

    const utl_Stat st(cow_String(file.c_str()));
    ASSERT_TRUE(st.Found());
    EXPECT_FALSE(st.IsDirectory());
    EXPECT_EQ(st.Size(), 1234u);
    EXPECT_GE(st.Links(), 1u);
    const int64_t now = static_cast<int64_t>(std::time(nullptr));
    EXPECT_LE(std::llabs(st.LastWriteTime() - now), 120) << "times are seconds since 1970";

    const zul_test::Descriptor fd(file, O_RDONLY);
    const utl_Stat byDescriptor(fd.fd());
    EXPECT_TRUE(byDescriptor.Found());
    EXPECT_EQ(byDescriptor.Size(), 1234u);

    const utl_Stat d(cow_String(dir.Path().c_str()));
    EXPECT_TRUE(d.Found());
    EXPECT_TRUE(d.IsDirectory());
    EXPECT_NO_THROW(d.ThrowIfFileNotFound());
}

TEST(UtlStat, MissingFileIsAnAnswerAndMissingDirectoryRaises)
{
    zul_test::TempDir dir;
    const utl_Stat missing(cow_String(dir.File("nothing.txt").c_str()));
    EXPECT_FALSE(missing.Found());
    EXPECT_NE(missing.Error().m_NativeErrorCode, 0u);
    EXPECT_THROW(missing.ThrowIfFileNotFound(), nex_SystemErrorException);

    const std::string deep = dir.File("no_such_dir") + "/" + "x.txt";
    EXPECT_THROW(utl_Stat(cow_String(deep.c_str())), nex_SystemErrorException);
    EXPECT_THROW(utl_Stat(-1), nex_SystemErrorException) << "a descriptor without a handle";
}

TEST(UtlStat, FileTimesRoundToTheNearestSecond)
{
    const uint64_t epoch = 116444736000000000ull;  // 1970-01-01 in 100 ns steps since 1601
    EXPECT_EQ(utl_Stat::SecondsFromFileTime(epoch), 0);
    EXPECT_EQ(utl_Stat::SecondsFromFileTime(epoch + 6000000), 1) << "0.6 s rounds up";
    EXPECT_EQ(utl_Stat::SecondsFromFileTime(epoch + 4000000), 0);
    EXPECT_EQ(utl_Stat::SecondsFromFileTime(epoch + 86400ull * 10000000ull), 86400);
}

}  // namespace

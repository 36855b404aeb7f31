// Raw files: lazy opening in three modes, positions, the read-only guards, Extend, the failure texts.
#include <gtest/gtest.h>

#include <string>

#include "utl/utl_File.h"
#include "zul_TestSupport.h"

namespace {

// The text of the E that `action` raises, thrown in the file layer's source.
template <class E, class F>
std::string TextOf(F action)
{
    const auto e = zul_test::Raised<E>(action);
    if (!e)
        return "<nothing raised>";
    EXPECT_EQ(e->File(), "utl/impl/utl_File");
    return e->UserReport().c_str();
}

TEST(UtlFile, WriteThenReadBackWithPositions)
{
    zul_test::TempDir dir;
    const cow_String name(dir.File("raw.dat").c_str());
    {
        utl_File out(name, utl_FileAccessWrite);
        EXPECT_FALSE(out.IsOpen()) << "opening waits for the first operation";
        EXPECT_EQ(out.Write("hello world", 11), 11);
        EXPECT_EQ(out.Write("", 0), 0);
        EXPECT_EQ(out.Location().Value(), 11);
        out.Seek(6);
        out.Write("WORLD", 5);
        out.Flush();
        EXPECT_EQ(out.FileSize().Value(), 11);
    }
    utl_File in(name, utl_FileAccessRead);
    char buffer[32] = {};
    EXPECT_EQ(in.Read(buffer, 32), 11) << "a short read is no error";
    EXPECT_EQ(std::string(buffer, 11), "hello WORLD");
    EXPECT_EQ(in.Read(buffer, 32), 0) << "end of file reads 0";
}

TEST(UtlFile, UpdateKeepsContentAndWriteTruncates)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("u.dat");
    zul_test::WriteFileBytes(path, "0123456789");
    {
        utl_File update(path.c_str(), utl_FileAccessUpdate);
        update.Seek(2);
        update.Write("ab", 2);
    }
    EXPECT_EQ(zul_test::ReadFileBytes(path), "01ab456789");
    {
        utl_File write(path.c_str(), utl_FileAccessWrite);
        write.Init();
    }
    EXPECT_EQ(zul_test::ReadFileBytes(path), "");
}

TEST(UtlFile, MissingFileAndMissingDirectory)
{
    zul_test::TempDir dir;
    const cow_String missing(dir.File("none.dat").c_str());
    EXPECT_EQ(TextOf<utl_FileExceptionNoFile>([&] { utl_File(missing, utl_FileAccessRead).Init(); }),
              std::string("*** Error: No such file (utl_File: in OpenRead)\nfile name: ") + missing.c_str());
    EXPECT_EQ(TextOf<utl_FileExceptionNoFile>([&] { utl_File(missing, utl_FileAccessUpdate).FileSize(); }),
              std::string("*** Error: No such file (utl_File: in OpenUpdate)\nfile name: ") + missing.c_str());

    const cow_String deep((dir.File("nodir") + "/x.dat").c_str());
    const std::string text = TextOf<utl_FileExceptionOpen>([&] { utl_File(deep, utl_FileAccessWrite).Init(); });
    EXPECT_EQ(text.rfind("*** Error: File open failed (utl_File: CreateFile in OpenWrite)\nerror: ", 0), 0u) << text;
    EXPECT_NE(text.find(std::string("\nfile: ") + deep.c_str()), std::string::npos);
}

TEST(UtlFile, FailedOpenIsTriedAgain)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("later.dat");
    utl_File f(path.c_str(), utl_FileAccessRead);
    EXPECT_THROW(f.Init(), utl_FileExceptionNoFile);
    EXPECT_FALSE(f.IsOpen());
    zul_test::WriteFileBytes(path, "now");
    EXPECT_EQ(f.FileSize().Value(), 3);
}

TEST(UtlFile, ReadOnlyGuards)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("ro.dat");
    zul_test::WriteFileBytes(path, "abc");
    utl_File f(path.c_str(), utl_FileAccessRead);
    const std::string refused = "*** Error: Write failed (utl_File: attempt to write to a read-only file.)\nfile name: " + path;
    EXPECT_EQ(TextOf<utl_FileExceptionWrite>([&] { f.Write("x", 1); }), refused);
    EXPECT_EQ(TextOf<utl_FileExceptionWrite>([&] { f.WriteShortAllowed("x", 1); }), refused);
    EXPECT_EQ(TextOf<utl_FileExceptionFlush>([&] { f.Flush(); }),
              "*** Error: Flush failed (utl_File: attempt to flush a read-only file.)\nfile name: " + path);
    try {
        f.Extend(100);
        FAIL();
    } catch (const nex_TextException& e) {
        EXPECT_EQ(e.DynTypeId(), nex_TextException::TypeId());
        EXPECT_EQ(e.UserReport(), "utl_File::Extend - attempt to extend a read-only file.");
    }
    EXPECT_EQ(zul_test::ReadFileBytes(path), "abc");
}

TEST(UtlFile, ExtendKeepsPositionAndTail)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("ext.dat");
    utl_File f(path.c_str(), utl_FileAccessWrite);
    f.Write("ABCDEFGH", 8);
    f.Seek(3);
    f.Extend(8);  // same size: the last four bytes are read and written back unchanged
    EXPECT_EQ(f.Location().Value(), 3);
    f.Extend(1 << 20);
    EXPECT_EQ(f.FileSize().Value(), 1 << 20);
    EXPECT_EQ(f.Location().Value(), 3);
    f.Seek(4);
    char tail[4];
    EXPECT_EQ(f.Read(tail, 4), 4);
    EXPECT_EQ(std::string(tail, 4), "EFGH");
}

TEST(UtlFile, SixtyFourBitPositions)
{
    zul_test::TempDir dir;
    const std::string path = dir.File("big.dat");
    utl_File f(path.c_str(), utl_FileAccessWrite);
    const int64_t far = (int64_t(1) << 32) + 10;  // past 4 GiB: a sparse file on most systems
    f.Seek(far);
    EXPECT_EQ(f.Location().Value(), far);
    EXPECT_EQ(f.Write("z", 1), 1);
    EXPECT_EQ(f.FileSize().Value(), far + 1);
}

TEST(UtlFile, FileOffsetDifferences)
{
    EXPECT_EQ(utl_FileOffset(10).DiffAsInt32(3), 7);
    EXPECT_EQ(utl_FileOffset(3).DiffAsInt32(10), -7);
    const auto e = zul_test::Raised<nex_AssertException>([] { utl_FileOffset(int64_t(1) << 40).DiffAsInt32(0); });
    ASSERT_TRUE(e.has_value()) << "a difference past 32 bits did not throw";
    EXPECT_EQ(e->Condition(), "d >= INT_MIN && d <= INT_MAX");  // as written, macros unexpanded
}

}  // namespace

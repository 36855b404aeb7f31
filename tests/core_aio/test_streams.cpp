#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <filesystem>
#include <string>

#include "aio/aio_ofstream.h"
#include "aio/aio_ostrstream.h"
#include "mem/mem_Memory.h"
#include "zul_TestSupport.h"

namespace {

std::atomic<int> g_allocCalls{0};
void* CountingAlloc(size_t n)
{
    ++g_allocCalls;
    return mem_Malloc(n);
}

aio_ostream& Bang(aio_ostream& s) { return s.put('!'); }

}  // namespace

TEST(AioOstrstream, FormattedOutputAccumulates)
{
    aio_ostrstream s;
    EXPECT_STREQ(s.str(), "");
    s.print("n=").print_int(-42).put(' ').print_unsigned(7u).put(' ').print_double(3.14159, 3);
    s.put(' ').print_longlong(-9000000000LL).write("xyz", 2).write("ignored", 0).print(nullptr);
    s << &Bang;
    s.flush();
    EXPECT_STREQ(s.str(), "n=-42 7 3.14 -9000000000xy!");
    EXPECT_EQ(s.pcount(), static_cast<int>(std::strlen(s.str())));
    EXPECT_TRUE(s.good());
    aio_ostrstream t;
    t.print_double(0.5, -1);  // the default precision
    EXPECT_STREQ(t.str(), "0.5");
    t.print_double(1e308, 60);  // more digits than a fixed buffer would hold
    EXPECT_GT(t.pcount(), 63);
}

TEST(AioOstrstream, AdoptStringHandsOverTheBufferAndEmptiesTheStream)
{
    aio_ostrstream s;
    std::string big(10000, 'b');
    s.print(big.c_str());
    char* text = s.adoptString();
    EXPECT_EQ(std::string(text), big);
    EXPECT_EQ(s.pcount(), 0);
    EXPECT_STREQ(s.str(), "");
    s.print("again");
    EXPECT_STREQ(s.str(), "again");
    mem_Free(text);

    aio_ostrstream empty;
    char* none = empty.adoptString(&mem_OperatorNewThrow);
    EXPECT_STREQ(none, "");
    mem_Free(none);
}

TEST(AioOstrstream, UsesTheGivenAllocationFunction)
{
    g_allocCalls = 0;
    {
        aio_ostrstream s(&CountingAlloc);
        for (int i = 0; i < 1000; ++i)
            s.print("0123456789");
        EXPECT_EQ(s.pcount(), 10000);
        EXPECT_GT(g_allocCalls.load(), 0);
        EXPECT_LT(g_allocCalls.load(), 20);  // grows geometrically
    }
    g_allocCalls = 0;
    aio_ostrstream e(&CountingAlloc);
    mem_Free(e.adoptString());
    EXPECT_EQ(g_allocCalls.load(), 1);
}

TEST(AioOstrstream, SeekpCutsTheTextAndRejectsOutsideTargets)
{
    aio_ostrstream s;
    s.print("0123456789");
    s.seekp(-3, aio_ios::end);
    EXPECT_STREQ(s.str(), "0123456");
    s.seekp(-2, aio_ios::cur);
    EXPECT_STREQ(s.str(), "01234");
    s.print("ab");
    EXPECT_STREQ(s.str(), "01234ab");
    EXPECT_EQ(s.tellp(), 7);
    s.seekp(0, aio_ios::beg);
    EXPECT_STREQ(s.str(), "");
    EXPECT_TRUE(s.good());
    s.print("xyz");
    s.seekp(4, aio_ios::beg);
    EXPECT_FALSE(s.good());
    EXPECT_STREQ(s.str(), "xyz");
    s.clear();
    s.seekp(-1, aio_ios::beg);
    EXPECT_FALSE(s.good());
    EXPECT_STREQ(s.str(), "xyz");
}

TEST(AioOstrstream, FailedGrowthKeepsTheText)
{
    aio_ostrstream s;
    s.print("kept");
    std::string big(5000, 'x');
    mem_TestFailAllocation(1);
    EXPECT_ANY_THROW(s.print(big.c_str()));
    mem_TestFailAllocation(0);
    EXPECT_STREQ(s.str(), "kept");
    s.print("!");
    EXPECT_STREQ(s.str(), "kept!");
}

TEST(AioOfstream, WritesCloseAndReopenTruncates)
{
    const zul_test::TempDir dir;
    const std::string p = dir.File("out.txt");
    {
        aio_ofstream f(p.c_str());
        ASSERT_TRUE(f.is_open());
        f.print("line one\n").print_int(12).put('\n');
        EXPECT_EQ(f.tellp(), 12);
    }
    EXPECT_EQ(zul_test::ReadFileBytes(p), "line one\n12\n");  // bytes as written, no newline translation
    aio_ofstream g;
    EXPECT_TRUE(g.open(p.c_str()));
    g.print("new");
    g.close();
    EXPECT_FALSE(g.is_open());
    EXPECT_TRUE(g.good());
    EXPECT_EQ(zul_test::ReadFileBytes(p), "new");
}

TEST(AioOfstream, SeekpFromBeginningCurrentAndEndWithSixtyFourBitOffsets)
{
    const zul_test::TempDir dir;
    const std::string p = dir.File("seek.bin");
    aio_ofstream f(p.c_str());
    f.print("0123456789");
    f.seekp(2, aio_ios::beg).print("ab");
    EXPECT_EQ(f.tellp(), 4);
    f.seekp(3, aio_ios::cur).print("C");
    f.seekp(-1, aio_ios::end).print("E");
    f.seekp(2, aio_ios::end).print("Z");  // past the end: the gap reads as zero bytes
    EXPECT_TRUE(f.good());
    f.close();
    EXPECT_EQ(zul_test::ReadFileBytes(p), std::string("01ab456C8E\0\0Z", 13));

    const std::string big = dir.File("big.bin");
    const long long beyond4G = (1LL << 32) + 10;
    EXPECT_TRUE(f.open(big.c_str()));
    f.seekp(beyond4G, aio_ios::beg);
    EXPECT_EQ(f.tellp(), beyond4G);
    f.put('x');
    EXPECT_EQ(f.tellp(), beyond4G + 1);
    EXPECT_TRUE(f.good());
    f.close();
    std::error_code ec;
    EXPECT_EQ(static_cast<long long>(std::filesystem::file_size(big, ec)), beyond4G + 1);
}

TEST(AioOfstream, AppendKeepsContentAndStillSeeks)
{
    const zul_test::TempDir dir;
    const std::string p = dir.File("append.txt");
    {
        aio_ofstream f(p.c_str(), true);  // a missing file is created
        ASSERT_TRUE(f.is_open());
        f.print("abc");
    }
    {
        aio_ofstream f(p.c_str(), true);
        EXPECT_EQ(f.tellp(), 3);
        f.print("def");
        f.seekp(0, aio_ios::beg).print("X");
    }
    EXPECT_EQ(zul_test::ReadFileBytes(p), "Xbcdef");
}

TEST(AioOfstream, FailuresMarkTheStream)
{
    const zul_test::TempDir dir;
    aio_ofstream f;
    EXPECT_FALSE(f.open(dir.File("missing_dir/x.txt").c_str()));
    EXPECT_FALSE(f.good());
    EXPECT_FALSE(f.is_open());
    EXPECT_EQ(f.tellp(), -1);
    f.clear();
    f.print("nowhere");
    EXPECT_FALSE(f.good());
    f.clear();
    f.seekp(0);
    EXPECT_FALSE(f.good());
    EXPECT_FALSE(aio_ofstream(nullptr).good());

    aio_ofstream g(dir.File("neg.bin").c_str());
    g.seekp(-5, aio_ios::beg);
    EXPECT_FALSE(g.good());
}

TEST(AioStd, StandardStreamsAreSingleObjectsThatWrite)
{
    EXPECT_EQ(&aio_cout(), &aio_cout());
    EXPECT_NE(&aio_cout(), &aio_cerr());
    aio_cerr().print("[core_aio] standard error stream works\n");
    aio_cout().print("[core_aio] standard output stream works\n").flush();
    EXPECT_TRUE(aio_cerr().good());
    EXPECT_TRUE(aio_cout().good());
}

// Line wrapping, number printing and the catenator's switch points.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "aio/aio_ostrstream.h"
#include "utl/utl_Catenator.h"
#include "utl/utl_Stream.h"

namespace {

std::string Text(aio_ostrstream& out)
{
    return std::string(out.str() ? out.str() : "", static_cast<size_t>(out.pcount()));
}

TEST(UtlStream, HeldTextMovesToTheNextLineWhenItDoesNotFit)
{
    aio_ostrstream out;
    utl_Stream s(out, 20, 6, 12);
    s << "aaaaaaaaaa";
    s.OptionalLineBreak();
    s << "bbbbbbbbbbbb";
    EXPECT_EQ(Text(out), "aaaaaaaaaa\nbbbbbbbbbbbb");
    EXPECT_EQ(s.Column(), 12);
}

TEST(UtlStream, LineBreakWritesHeldTextAndCountsIt)
{
    aio_ostrstream out;
    utl_Stream s(out, 20, 6, 12);
    s << "aaaa";
    s.OptionalLineBreak();
    s << "bb";
    EXPECT_EQ(Text(out), "aaaa") << "text after a break point is held back";
    s << endl;
    EXPECT_EQ(Text(out), "aaaabb\n");
    EXPECT_EQ(s.Column(), 2);
}

TEST(UtlStream, LongUnbrokenTextRestartsTheColumn)
{
    aio_ostrstream out;
    utl_Stream s(out, 80, 6, 12);
    s << std::string(501, 'x').c_str();
    EXPECT_EQ(s.Column(), 0);
    EXPECT_EQ(Text(out).size(), 501u);
}

TEST(UtlStream, FlushWritesHeldTextAndKeepsTheBreakPoint)
{
    aio_ostrstream out;
    utl_Stream s(out, 10, 6, 12);
    s.OptionalLineBreak();
    s << "abc";
    s.Flush();
    EXPECT_EQ(Text(out), "abc");
    EXPECT_EQ(s.Column(), 0);
    s << "0123456789x";  // still pending: wraps
    EXPECT_EQ(Text(out), "abc\n0123456789x");
}

TEST(UtlStream, RealsLookLikeReals)
{
    aio_ostrstream out;
    utl_Stream s(out, 200, 6, 12);
    s.Print(3.0, 0, 0).Print(" ").Print(150000.0, 0, 0).Print(" ").Print(12, 4);
    EXPECT_EQ(Text(out), "3. 150000.   12");
    char wide[16] = "    12";
    utl_Stream::FixNumericString(wide, 6);
    EXPECT_STREQ(wide, "   12.") << "a right-aligned field keeps its width";
}

TEST(UtlStream, ThreeDigitExponentsLoseALeadingZero)
{
    char narrow[16] = "1e-007";
    utl_Stream::FixNumericString(narrow, 0);
    EXPECT_STREQ(narrow, "1e-07");
    char wide[16] = "    1e-007";
    utl_Stream::FixNumericString(wide, 10);
    EXPECT_STREQ(wide, "     1e-07");
    char big[16] = "1e+100";
    utl_Stream::FixNumericString(big, 0);
    EXPECT_STREQ(big, "1e+100");
    char two[16] = "1e-07";
    utl_Stream::FixNumericString(two, 0);
    EXPECT_STREQ(two, "1e-07");
}

TEST(UtlStream, ExponentsPrintAlikeOnEveryPlatform)
{
    aio_ostrstream out;
    utl_Stream s(out, 200, 6, 12);
    s.Print(1.0e-7, 10, 3);
    EXPECT_EQ(Text(out), "     1e-07");
}

TEST(UtlStream, SmallRealsPrintAsZeroWhileGuarded)
{
    aio_ostrstream out;
    utl_Stream s(out, 200, 6, 12);
    {
        utl_StreamSmallReal guard(s, 1e-10);
        s << -1e-12;
    }
    s << " ";
    s << 0.5f;
    EXPECT_EQ(Text(out), "0. 0.5");
}

TEST(UtlCatenator, SwitchesToStreamModeAt992Bytes)
{
    utl_Catenator c;
    const std::string piece(991, 'a');
    c.Cat(piece.c_str(), 991);
    EXPECT_FALSE(c.InStreamMode());
    c.Cat("b", 1);
    EXPECT_TRUE(c.InStreamMode());
    c.Cat("cd", 2);
    const cow_String all = c.GetString();
    EXPECT_EQ(all.Length(), 994);
    EXPECT_TRUE(all.EndsWith("abcd"));
}

TEST(UtlCatenator, ShortResultsAreCopiesLongOnesShare)
{
    utl_Catenator c;
    const std::string piece(496, 'x');
    c.Cat(piece.c_str(), 496);
    const cow_String copy = c.GetString();
    EXPECT_EQ(copy.RefCount(), 1) << "a short result does not pin the buffer";
    c.Cat("y", 1);
    const cow_String shared = c.GetString();
    EXPECT_EQ(shared.Length(), 497);
    EXPECT_EQ(shared.RefCount(), 2) << "the catenator's buffer is shared";
}

TEST(UtlCatenator, EraseInBothModes)
{
    utl_Catenator c;
    c.Cat("abc", 3).Erase().Cat("d", 1);
    EXPECT_EQ(c.GetString(), "d");
    const std::string big(2000, 'z');
    c.Cat(big.c_str(), 2000).Erase().Cat("e", 1);
    EXPECT_TRUE(c.InStreamMode());
    EXPECT_EQ(c.GetString(), "e");
}

TEST(AioOperators, WriteTextCharsNumbersAndStrings)
{
    aio_ostrstream out;
    out << "n=" << 42 << ' ' << cow_String("s") << cow_String() << endl;
    EXPECT_EQ(Text(out), "n=42 s\n");
}

}  // namespace

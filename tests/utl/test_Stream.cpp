// Line wrapping, number printing, and the output operator for strings.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <utility>

#include "aio/aio_ostrstream.h"
#include "utl/utl_Stream.h"

namespace {

std::string Text(aio_ostrstream& out)
{
    return std::string(out.str() ? out.str() : "", static_cast<size_t>(out.pcount()));
}

// Text after a break point is held back; it moves to the next line when it does not fit, and a
// line end or a flush writes it.
TEST(UtlStream, HeldTextAtBreakPoints)
{
    aio_ostrstream wrapped;
    utl_Stream s(wrapped, 20, 6, 12);
    s << "aaaaaaaaaa";
    s.OptionalLineBreak();
    s << "bbbbbbbbbbbb";
    EXPECT_EQ(Text(wrapped), "aaaaaaaaaa\nbbbbbbbbbbbb");
    EXPECT_EQ(s.Column(), 12);

    aio_ostrstream fits;
    utl_Stream t(fits, 20, 6, 12);
    t << "aaaa";
    t.OptionalLineBreak();
    t << "bb";
    EXPECT_EQ(Text(fits), "aaaa") << "text after a break point is held back";
    t << endl;
    EXPECT_EQ(Text(fits), "aaaabb\n");
    EXPECT_EQ(t.Column(), 2);

    aio_ostrstream flushed;
    utl_Stream u(flushed, 10, 6, 12);
    u.OptionalLineBreak();
    u << "abc";
    u.Flush();
    EXPECT_EQ(Text(flushed), "abc");
    EXPECT_EQ(u.Column(), 0);
    u << "0123456789x";  // the break point is still pending: wraps
    EXPECT_EQ(Text(flushed), "abc\n0123456789x");
}

TEST(UtlStream, LongUnbrokenTextRestartsTheColumn)
{
    aio_ostrstream out;
    utl_Stream s(out, 80, 6, 12);
    s << std::string(501, 'x').c_str();
    EXPECT_EQ(s.Column(), 0);
    EXPECT_EQ(Text(out).size(), 501u);
}

// Reals look like reals; three-digit exponents lose a leading zero, so that exponents print
// alike on every platform; a right-aligned field keeps its width.
TEST(UtlStream, NumberTexts)
{
    aio_ostrstream out;
    utl_Stream s(out, 200, 6, 12);
    s.Print(3.0, 0, 0).Print(" ").Print(150000.0, 0, 0).Print(" ").Print(12, 4).Print(" ").Print(1.0e-7, 10, 3);
    EXPECT_EQ(Text(out), "3. 150000.   12      1e-07");
    const std::pair<const char*, const char*> fixes[] = {
        {"    12", "   12."}, {"1e-007", "1e-07"}, {"    1e-007", "     1e-07"}, {"1e+100", "1e+100"}, {"1e-07", "1e-07"}};
    for (const auto& fix : fixes) {
        char text[16];
        std::snprintf(text, sizeof text, "%s", fix.first);
        utl_Stream::FixNumericString(text, fix.first[0] == ' ' ? static_cast<int>(std::strlen(fix.first)) : 0);
        EXPECT_STREQ(text, fix.second) << fix.first;
    }
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

TEST(AioOperators, WriteTextCharsNumbersAndStrings)
{
    aio_ostrstream out;
    out << "n=" << 42 << ' ' << cow_String("s") << cow_String() << endl;
    EXPECT_EQ(Text(out), "n=42 s\n");
}

}  // namespace

// Base64 in the library's alphabet ("!" for the 64th character): vectors, line layout, round
// trips and the rejection of text the encoder never writes.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

#include "mem/mem_Memory.h"
#include "utl/utl_Base64.h"
#include "zul_TestSupport.h"

namespace {

// Binary-safe: the copying constructors stop at a zero byte.
cow_String Cow(const std::string& s)
{
    cow_String c;
    if (!s.empty()) {
        std::memcpy(c.GetWriteBuffer(static_cast<int>(s.size())), s.data(), s.size());
        c.SetLength(static_cast<int>(s.size()));
    }
    return c;
}

std::string Encode(const std::string& bytes, bool lineBreaks)
{
    cow_String data = Cow(bytes);
    const cow_String text = utl_base64Encode(data, lineBreaks);
    return std::string(text.c_str(), static_cast<size_t>(text.Length()));
}

std::string Decode(const std::string& text, bool lineBreaks)
{
    cow_String data = Cow(text);
    const cow_String bytes = utl_base64Decode(data, lineBreaks);
    return std::string(bytes.c_str(), static_cast<size_t>(bytes.Length()));
}

std::string RandomBytes(std::mt19937& rng, size_t n)
{
    std::string s(n, '\0');
    for (char& c : s)
        c = static_cast<char>(rng() & 0xFF);
    return s;
}

TEST(UtlBase64, Vectors)
{
    EXPECT_EQ(Encode("\xFB\xFF\xFF", false), "+!!!");
    EXPECT_EQ(Encode("\xFB\xFF\xFF", true), "+!!!\n");
    EXPECT_EQ(Encode("", true), "");
    EXPECT_EQ(Encode("f", false), "Zg==");
    EXPECT_EQ(Encode("fo", false), "Zm8=");
    EXPECT_EQ(Encode("foo", false), "Zm9v");
    EXPECT_EQ(Encode("foobar", true), "Zm9vYmFy\n");
    EXPECT_EQ(Encode(std::string("\0\0\xFF", 3), false), "AAD!");
    EXPECT_EQ(Decode("+!!!", false), "\xFB\xFF\xFF");
    EXPECT_EQ(Decode("Zm8=", false), "fo");
    EXPECT_EQ(Decode("Zg==\n", true), "f");
}

// Lines of 76 characters (57 bytes), a shorter last one, each ended by a newline.
TEST(UtlBase64, LineLayout)
{
    const std::string line = Encode(std::string(57, 'a'), false);
    ASSERT_EQ(line.size(), 76u);
    EXPECT_EQ(Encode(std::string(57, 'a'), true), line + "\n");
    EXPECT_EQ(Encode(std::string(58, 'a'), true), line + "\nYQ==\n");
    EXPECT_EQ(Encode(std::string(114, 'a'), true), line + "\n" + line + "\n");
    EXPECT_EQ(Encode(std::string(114, 'a'), false), line + line);
    for (size_t n = 0; n < 200; ++n)
        EXPECT_EQ(Encode(std::string(n, 'x'), true).size(), utl_base64EncodedLength(n, true)) << n;
}

// A large buffer both ways (round trips of small ones are a property of fuzz_base64).
TEST(UtlBase64, LargeRoundTrips)
{
    std::mt19937 rng(1234);
    const std::string big = RandomBytes(rng, (1 << 20) + 7);
    for (bool lines : {false, true}) {
        const std::string text = Encode(big, lines);
        EXPECT_EQ(text.find('/'), std::string::npos);
        EXPECT_EQ(Decode(text, lines), big);
    }
}

TEST(UtlBase64, RejectsWhatTheEncoderNeverWrites)
{
    const char* const bad[] = {
        "Zg=",        // short group
        "Zm9",        // short group
        "Z===",       // padding too early
        "=Zm9",       // padding first
        "Zg==Zg==",   // text after the padded group
        "Zh==",       // unused bits set
        "Zm9=",       // unused bits set
        "Zm9v/Zm9",   // standard 64th character
        "Zm 9v",      // blank
        "Zm\n9v",     // newline inside a group
        "Zm9v\r\n",   // carriage return
        "Zm9v\xC3\xA9=",  // bytes outside ASCII
    };
    for (const char* text : bad) {
        EXPECT_THROW(Decode(text, true), utl_Base64Exception) << text;
        EXPECT_THROW(Decode(text, false), utl_Base64Exception) << text;
    }
    EXPECT_THROW(Decode("Zm9v\n", false), utl_Base64Exception);
    EXPECT_EQ(Decode("Zm9v\n", true), "foo");
    // With line breaks only the encoder's layout: full lines of 76, a final newline.
    const std::string wrapped = Encode(std::string(100, 'x'), true);
    EXPECT_EQ(Decode(wrapped, true), std::string(100, 'x'));
    EXPECT_THROW(Decode(wrapped.substr(0, wrapped.size() - 1), true), utl_Base64Exception);  // no final newline
    std::string early = wrapped;
    early.insert(40, "\n");  // a newline between groups, but not where a line ends
    EXPECT_THROW(Decode(early, true), utl_Base64Exception);
    EXPECT_THROW(Decode("Zm9v\n\n", true), utl_Base64Exception);  // an empty line
    const std::string report = zul_test::ReportOf<utl_Base64Exception>([] { Decode("Zm9vZ*9v", false); });
    EXPECT_NE(report.find("offset 5"), std::string::npos) << report;
}

TEST(UtlBase64, AllocationFailureIsReported)
{
    cow_String data("some bytes"), text("c29tZQ==");
    mem_TestFailAllocation(1);
    EXPECT_EQ(zul_test::ReportOf<utl_Base64Exception>([&] { utl_base64Encode(data, true); }), "memory allocation failure");
    mem_TestFailAllocation(1);
    EXPECT_THROW(utl_base64Decode(text, false), utl_Base64Exception);
    mem_TestFailAllocation(0);
}

}  // namespace

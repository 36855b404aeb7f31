// Base64 in the library's alphabet ("!" for the 64th character): vectors, line layout, round
// trips and the rejection of text the encoder never writes.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

#include "mem/mem_Memory.h"
#include "utl/utl_Base64.h"

namespace {

// Binary-safe: the copying constructors stop at a zero byte.
cow_String Bytes(const std::string& s)
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
    cow_String data = Bytes(bytes);
    const cow_String text = utl_base64Encode(data, lineBreaks);
    return std::string(text.c_str(), static_cast<size_t>(text.Length()));
}

std::string Decode(const std::string& text, bool lineBreaks)
{
    cow_String data = Bytes(text);
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

TEST(UtlBase64, LineLayout)
{
    const std::string b57(57, 'a'), b58(58, 'a'), b60(60, 'a'), b114(114, 'a');
    const std::string t57 = Encode(b57, true);
    ASSERT_EQ(t57.size(), 77u);
    EXPECT_EQ(t57.find('\n'), 76u);

    const std::string t58 = Encode(b58, true);
    ASSERT_EQ(t58.size(), 82u);
    EXPECT_EQ(t58[76], '\n');
    EXPECT_EQ(t58.substr(77), "YQ==\n");

    const std::string t60 = Encode(b60, true);  // no partial group, length not a multiple of 57
    EXPECT_EQ(t60.size(), 76u + 1 + 4 + 1);
    EXPECT_EQ(t60.back(), '\n');

    const std::string t114 = Encode(b114, true);
    ASSERT_EQ(t114.size(), 154u);
    EXPECT_EQ(t114[76], '\n');
    EXPECT_EQ(t114[153], '\n');
    EXPECT_EQ(Encode(b114, false).find('\n'), std::string::npos);
    for (size_t n = 0; n < 200; ++n)
        EXPECT_EQ(Encode(std::string(n, 'x'), true).size(), utl_base64EncodedLength(n, true)) << n;
}

TEST(UtlBase64, RoundTrips)
{
    std::mt19937 rng(1234);
    for (size_t n = 0; n < 300; ++n) {
        const std::string bytes = RandomBytes(rng, n);
        for (bool lines : {false, true}) {
            const std::string text = Encode(bytes, lines);
            EXPECT_EQ(text.find('/'), std::string::npos);
            ASSERT_EQ(Decode(text, lines), bytes) << n << " " << lines;
        }
    }
    const std::string big = RandomBytes(rng, (1 << 20) + 7);
    EXPECT_EQ(Decode(Encode(big, true), true), big);
    EXPECT_EQ(Decode(Encode(big, false), false), big);
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
    try {
        Decode("Zm9vZ*9v", false);
        FAIL();
    } catch (const utl_Base64Exception& e) {
        EXPECT_NE(std::string(e.UserReport().c_str()).find("offset 5"), std::string::npos) << e.UserReport().c_str();
    }
}

TEST(UtlBase64, AllocationFailureIsReported)
{
    cow_String data("some bytes");
    mem_TestFailAllocation(1);
    try {
        utl_base64Encode(data, true);
        mem_TestFailAllocation(0);
        FAIL();
    } catch (const utl_Base64Exception& e) {
        mem_TestFailAllocation(0);
        EXPECT_STREQ(e.UserReport().c_str(), "memory allocation failure");
    }
    cow_String text("c29tZQ==");
    mem_TestFailAllocation(1);
    EXPECT_THROW(utl_base64Decode(text, false), utl_Base64Exception);
    mem_TestFailAllocation(0);
}

}  // namespace

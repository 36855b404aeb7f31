// MD5 against RFC 1321, piecewise feeding, padding boundaries, the finished state and (where
// available) OpenSSL on random inputs.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "crypto_Hex.h"
#include "nex/nex_Exception.h"
#include "uti/uti_MD5.h"

#ifdef ZUL_TEST_OPENSSL
#include <openssl/evp.h>
#endif

using namespace crypto_test;

namespace {

std::string Md5Hex(const std::string& message)
{
    uti_MD5 md5;
    md5.Append(Cow(message));
    return Hex(Bytes(md5.Digest()));
}

const char kDigits[] = "12345678901234567890123456789012345678901234567890123456789012345678901234567890";

}  // namespace

TEST(UtiMD5, Rfc1321Suite)
{
    EXPECT_EQ(Md5Hex(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(Md5Hex("a"), "0cc175b9c0f1b6a831c399e269772661");
    EXPECT_EQ(Md5Hex("abc"), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(Md5Hex("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
    EXPECT_EQ(Md5Hex("abcdefghijklmnopqrstuvwxyz"), "c3fcd3d76192e4007dfb496cca67e13b");
    EXPECT_EQ(Md5Hex("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"),
              "d174ab98d277d9f5a5611c2c9f419d9f");
    EXPECT_EQ(Md5Hex(kDigits), "57edf4a22be3c955ac49da2e2107b67a");
}

TEST(UtiMD5, PaddingBoundaries)
{
    // 55 bytes fit the length into the same block, 56 need a second one; 63 and 64 straddle the
    // block end. Values from Python's hashlib.
    EXPECT_EQ(Md5Hex(std::string(55, 'a')), "ef1772b6dff9a122358552954ad0df65");
    EXPECT_EQ(Md5Hex(std::string(56, 'a')), "3b0c8ac703f828b04c6c197006d17218");
    EXPECT_EQ(Md5Hex(std::string(63, 'a')), "b06521f39153d618550606be297466d5");
    EXPECT_EQ(Md5Hex(std::string(64, 'a')), "014842d480b571495a4a0363793f7367");
    EXPECT_EQ(Md5Hex(std::string(1000000, 'a')), "7707d6ae4e027c70eea2a935c2296f21");
}

TEST(UtiMD5, PiecesOfAnySizeGiveTheSameDigest)
{
    const std::string message = kDigits;
    for (int seed = 1; seed <= 40; ++seed) {
        Random random(static_cast<uint32_t>(seed));
        uti_MD5 md5;
        size_t at = 0;
        while (at < message.size()) {
            const size_t n = std::min(message.size() - at, static_cast<size_t>(random.Below(70)));
            const std::string piece = message.substr(at, n);
            switch (random.Below(3)) {  // all three overloads, zero-length pieces included
            case 0: md5.Append(piece.data(), static_cast<int>(n)); break;
            case 1: md5.Append(reinterpret_cast<const unsigned char*>(piece.data()), static_cast<int>(n)); break;
            default: md5.Append(Cow(piece)); break;
            }
            at += n;
        }
        EXPECT_EQ(Hex(Bytes(md5.Digest())), "57edf4a22be3c955ac49da2e2107b67a") << "seed " << seed;
    }
}

TEST(UtiMD5, FinishedStateAndReset)
{
    uti_MD5 md5;
    md5.Append("abc", 3);
    const cow_String first = md5.Digest();
    EXPECT_EQ(first.Length(), 16);
    EXPECT_EQ(Bytes(md5.Digest()), Bytes(first));

    try {
        md5.Append("x", 1);
        FAIL() << "Append after Digest must raise";
    } catch (const nex_AssertException& e) {
        EXPECT_STREQ(e.Condition().c_str(), "m_Digest.Empty()");
    }
    EXPECT_THROW(md5.Append(Cow("y")), nex_AssertException);
    EXPECT_EQ(Hex(Bytes(md5.Digest())), "900150983cd24fb0d6963f7d28e17f72");

    md5.Reset().Append("message ", 8).Append(Cow("digest"));
    EXPECT_EQ(Hex(Bytes(md5.Digest())), "f96b697d7cb7938d525a2f31aaf161d0");

    uti_MD5 open;
    EXPECT_THROW(open.Append("abc", -1), nex_AssertException);
    EXPECT_EQ(Hex(Bytes(open.Digest())), "d41d8cd98f00b204e9800998ecf8427e");  // nothing was appended
}

#ifdef ZUL_TEST_OPENSSL
TEST(UtiMD5, MatchesOpenSslOnRandomInputs)
{
    Random random(20240601u);
    for (int round = 0; round < 300; ++round) {
        const std::string message = random.Text(static_cast<size_t>(random.Below(round < 200 ? 300 : 20000)));
        unsigned char expected[EVP_MAX_MD_SIZE];
        unsigned int expectedLength = 0;
        ASSERT_EQ(EVP_Digest(message.data(), message.size(), expected, &expectedLength, EVP_md5(), nullptr), 1);

        uti_MD5 md5;
        size_t at = 0;
        while (at < message.size()) {
            const size_t n = std::min(message.size() - at, static_cast<size_t>(random.Below(200)));
            md5.Append(message.data() + at, static_cast<int>(n));
            at += n;
        }
        EXPECT_EQ(Bytes(md5.Digest()), std::string(reinterpret_cast<char*>(expected), expectedLength))
            << "length " << message.size();
    }
}
#endif

// MD5 against RFC 1321's suite and the padding boundaries, whole and fed in random pieces, the
// finished state, and (where available) OpenSSL on random inputs.
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

// Feeds `message` in random pieces of up to `most` bytes (empty ones included) through all three
// Append overloads, and gives the digest in hex.
std::string PiecewiseMd5Hex(const std::string& message, Random& random, int most)
{
    uti_MD5 md5;
    for (size_t at = 0, n = 0; at < message.size(); at += n) {
        n = std::min(message.size() - at, static_cast<size_t>(random.Below(most)));
        const char* piece = message.data() + at;
        switch (random.Below(3)) {
        case 0: md5.Append(piece, static_cast<int>(n)); break;
        case 1: md5.Append(reinterpret_cast<const unsigned char*>(piece), static_cast<int>(n)); break;
        default: md5.Append(Cow(std::string(piece, n))); break;
        }
    }
    return Hex(Bytes(md5.Digest()));
}

}  // namespace

TEST(UtiMD5, PublishedDigestsWholeAndInPieces)
{
    // RFC 1321's suite, then lengths at the padding boundaries (values from Python's hashlib): 55
    // bytes fit the length into the same block, 56 need a second one; 63 and 64 straddle its end.
    const struct {
        std::string message;
        const char* digest;
    } cases[] = {
        {"", "d41d8cd98f00b204e9800998ecf8427e"},
        {"a", "0cc175b9c0f1b6a831c399e269772661"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72"},
        {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789", "d174ab98d277d9f5a5611c2c9f419d9f"},
        {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
         "57edf4a22be3c955ac49da2e2107b67a"},
        {std::string(55, 'a'), "ef1772b6dff9a122358552954ad0df65"},
        {std::string(56, 'a'), "3b0c8ac703f828b04c6c197006d17218"},
        {std::string(63, 'a'), "b06521f39153d618550606be297466d5"},
        {std::string(64, 'a'), "014842d480b571495a4a0363793f7367"},
        {std::string(1000000, 'a'), "7707d6ae4e027c70eea2a935c2296f21"},
    };
    for (const auto& c : cases) {
        uti_MD5 whole;
        whole.Append(Cow(c.message));
        EXPECT_EQ(Hex(Bytes(whole.Digest())), c.digest) << c.message.size() << " bytes";
        for (uint32_t seed = 1; seed <= 10; ++seed) {
            Random random(seed);
            EXPECT_EQ(PiecewiseMd5Hex(c.message, random, 70), c.digest) << c.message.size() << " bytes, seed " << seed;
        }
    }
}

TEST(UtiMD5, FinishedStateAndReset)
{
    const std::string abc = "900150983cd24fb0d6963f7d28e17f72";
    uti_MD5 md5;
    md5.Append("abc", 3);
    EXPECT_EQ(Hex(Bytes(md5.Digest())), abc);
    try {
        md5.Append("x", 1);
        FAIL() << "Append after Digest must raise";
    } catch (const nex_AssertException& e) {
        EXPECT_STREQ(e.Condition().c_str(), "m_Digest.Empty()");
    }
    EXPECT_THROW(md5.Append(Cow("y")), nex_AssertException);
    EXPECT_EQ(Hex(Bytes(md5.Digest())), abc);  // the finished digest stays as it was

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
        EXPECT_EQ(PiecewiseMd5Hex(message, random, 200), Hex(std::string(reinterpret_cast<char*>(expected), expectedLength)))
            << "length " << message.size();
    }
}
#endif

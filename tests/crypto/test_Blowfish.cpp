// Blowfish against Eric Young's published vectors (as strings and as native words), the length
// rules and their messages, the key schedule's edge cases and (where available) OpenSSL on random
// keys and texts.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "crypto_Hex.h"
#include "nex/nex_Exception.h"
#include "uti/uti_Blowfish.h"
#include "zul_TestSupport.h"

#ifdef ZUL_TEST_OPENSSL
#include <openssl/blowfish.h>
#endif

using namespace crypto_test;

namespace {

struct Vector {
    const char* key;
    const char* plain;
    const char* cipher;
};

// Eric Young's ECB set: key, clear block and cipher block, all big-endian.
const Vector kEcbVectors[] = {
    {"0000000000000000", "0000000000000000", "4EF997456198DD78"},
    {"FFFFFFFFFFFFFFFF", "FFFFFFFFFFFFFFFF", "51866FD5B85ECB8A"},
    {"3000000000000000", "1000000000000001", "7D856F9A613063F2"},
    {"1111111111111111", "1111111111111111", "2466DD878B963C9D"},
    {"0123456789ABCDEF", "1111111111111111", "61F9C3802281B096"},
    {"1111111111111111", "0123456789ABCDEF", "7D0CC630AFDA1EC7"},
    {"FEDCBA9876543210", "0123456789ABCDEF", "0ACEAB0FC6A0A28D"},
    {"7CA110454A1A6E57", "01A1D6D039776742", "59C68245EB05282B"},
    {"0131D9619DC1376E", "5CD54CA83DEF57DA", "B1B8CC0B250F09A0"},
    {"07A1133E4A0B2686", "0248D43806F67172", "1730E5778BEA1DA4"},
    {"3849674C2602319E", "51454B582DDF440A", "A25E7856CF2651EB"},
    {"04B915BA43FEB5B6", "42FD443059577FA2", "353882B109CE8F1A"},
    {"0113B970FD34F2CE", "059B5E0851CF143A", "48F4D0884C379918"},
    {"0170F175468FB5E6", "0756D8E0774761D2", "432193B78951FC98"},
    {"43297FAD38E373FE", "762514B829BF486A", "13F04154D69D1AE5"},
    {"07A7137045DA2A16", "3BDD119049372802", "2EEDDA93FFD39C79"},
    {"04689104C2FD3B2F", "26955F6835AF609A", "D887E0393C2DA6E3"},
    {"37D06BB516CB7546", "164D5E404F275232", "5F99D04F5B163969"},
    {"1F08260D1AC2465E", "6B056E18759F5CCA", "4A057A3B24D3977B"},
    {"584023641ABA6176", "004BD6EF09176062", "452031C1E4FADA8E"},
    {"025816164629B007", "480D39006EE762F2", "7555AE39F59B87BD"},
    {"49793EBC79B3258F", "437540C8698F3CFA", "53C55F9CB49FC019"},
    {"4FB05E1515AB73A7", "072D43A077075292", "7A8E7BFA937E89A3"},
    {"49E95D6D4CA229BF", "02FE55778117F12A", "CF9C5D7A4986ADB5"},
    {"018310DC409B26D6", "1D9D5C5018F728C2", "D1ABB290658BC778"},
    {"1C587F1C13924FEF", "305532286D6F295A", "55CB3774D13EF201"},
    {"0101010101010101", "0123456789ABCDEF", "FA34EC4847B268B2"},
    {"1F1F1F1F0E0E0E0E", "0123456789ABCDEF", "A790795108EA3CAE"},
    {"E0FEE0FEF1FEF1FE", "0123456789ABCDEF", "C39E072D9FAC631D"},
    {"0000000000000000", "FFFFFFFFFFFFFFFF", "014933E0CDAFF6E4"},
    {"FFFFFFFFFFFFFFFF", "0000000000000000", "F21E9A77B71C49BC"},
    {"0123456789ABCDEF", "0000000000000000", "245946885754369A"},
    {"FEDCBA9876543210", "FFFFFFFFFFFFFFFF", "6B5C5A9C5D9E0A5A"},
};

// The same set's variable-length keys: prefixes of one key, clear block FEDCBA9876543210.
const char kSetKey[] = "F0E1D2C3B4A5968778695A4B3C2D1E0F";
const char* const kSetKeyCiphers[] = {
    "F9AD597C49DB005E", "E91D21C1D961A6D6", "E9C2B70A1BC65CF3", "BE1E639408640F05",
    "B39E44481BDB1E6E", "9457AA83B1928C0D", "8BB77032F960629D", "E87A244E2CC85E82",
    "15750E7A4F4EC577", "122BA70B3AB64AE0", "3A833C9AFFC537F6", "9409DA87A90F6BF2",
    "884F80625060B8B4", "1F85031C19E11968", "79D9373A714CA34F", "93142887EE3BE15C",
};

uti_Blowfish::DWord Block(const char* hex)
{
    return {static_cast<uint32_t>(std::stoul(std::string(hex, 8), nullptr, 16)),
            static_cast<uint32_t>(std::stoul(std::string(hex + 8, 8), nullptr, 16))};
}

std::string HexOf(const uti_Blowfish::DWord& block)
{
    char text[17];
    std::snprintf(text, sizeof text, "%08X%08X", static_cast<unsigned>(block.m_Left), static_cast<unsigned>(block.m_Right));
    return text;
}

}  // namespace

TEST(UtiBlowfish, EricYoungEcbVectors)
{
    // Set_Passwd ends a key at its first zero byte, so keys holding one cannot reproduce their row.
    int used = 0;
    for (const Vector& v : kEcbVectors) {
        const std::string key = Unhex(v.key);
        if (key.find('\0') != std::string::npos)
            continue;
        uti_Blowfish bf;
        bf.Set_Passwd(Cow(key));
        const cow_String cipher = bf.Encrypt(Cow(Unhex(v.plain)));
        EXPECT_EQ(Hex(Bytes(cipher)), Hex(Unhex(v.cipher))) << "key " << v.key;
        EXPECT_EQ(Hex(Bytes(bf.Decrypt(cipher))), Hex(Unhex(v.plain))) << "key " << v.key;
        uti_Blowfish::DWord blocks[2] = {Block(v.plain), Block(v.plain)};  // two blocks in one call
        bf.EncryptDWords(blocks, 16);
        EXPECT_EQ(HexOf(blocks[0]) + HexOf(blocks[1]), std::string(v.cipher) + v.cipher) << "key " << v.key;
        bf.DecryptDWords(blocks, 16);
        EXPECT_EQ(HexOf(blocks[0]) + HexOf(blocks[1]), std::string(v.plain) + v.plain) << "key " << v.key;
        ++used;
    }
    EXPECT_EQ(used, 30);

    for (int n = 1; n <= 16; ++n) {
        uti_Blowfish bf;
        bf.Set_Passwd(Cow(Unhex(std::string(kSetKey, static_cast<size_t>(2 * n)))));
        EXPECT_EQ(Hex(Bytes(bf.Encrypt(Cow(Unhex("FEDCBA9876543210"))))), Hex(Unhex(kSetKeyCiphers[n - 1])))
            << "key length " << n;
    }
}

TEST(UtiBlowfish, PaddingAndLengthMessages)
{
    uti_Blowfish bf;
    bf.Set_Passwd("key");
    EXPECT_EQ(bf.Encrypt("").Length(), 0);
    EXPECT_EQ(bf.Decrypt("").Length(), 0);
    const cow_String nine = bf.Encrypt("123456789");
    EXPECT_EQ(nine.Length(), 16);
    EXPECT_EQ(Bytes(bf.Decrypt(nine)), std::string("123456789") + std::string(7, '\0'));
    EXPECT_EQ(bf.Encrypt(Cow(std::string(16, 'x'))).Length(), 16);

    EXPECT_EQ(zul_test::ReportOf<nex_TextException>([&] { bf.Decrypt("12345"); }), "Blowfish requires the input to be a multiple of 8 bytes.");
    uti_Blowfish::DWord blocks[2] = {{1u, 2u}, {3u, 4u}};
    EXPECT_EQ(zul_test::ReportOf<nex_TextException>([&] { bf.EncryptDWords(blocks, 12); }),
              "Blowfish encryption requires the input to be a multiple of 8 bytes (64 bits).");
    EXPECT_EQ(zul_test::ReportOf<nex_TextException>([&] { bf.DecryptDWords(blocks, 12); }),
              "Blowfish decryption requires the input to be a multiple of 8 bytes (64 bits).");
    EXPECT_EQ(zul_test::ReportOf<nex_TextException>([&] { bf.DecryptDWords(blocks, -8); }),
              "Blowfish decryption requires the input to be a multiple of 8 bytes (64 bits).");
    EXPECT_EQ(blocks[0].m_Left, 1u);  // nothing touched before the check
    EXPECT_EQ(blocks[1].m_Right, 4u);
}

TEST(UtiBlowfish, KeyScheduleEdges)
{
    const cow_String text = "sixteen bytes!!!";
    const std::string unkeyed = Bytes(uti_Blowfish().Encrypt(text));
    uti_Blowfish bf;  // one machine throughout: a new key must replace the state entirely
    auto with = [&](const std::string& key) {
        bf.Set_Passwd(Cow(key));
        return Bytes(bf.Encrypt(text));
    };
    EXPECT_EQ(with(""), unkeyed);
    EXPECT_EQ(with(std::string("ab\0cd", 5)), with("ab"));  // the key stops at its first zero byte
    const std::string key72 = Random(5).Text(72, true);  // only 72 key bytes enter the schedule
    EXPECT_EQ(with(key72 + "anything after"), with(key72));
    EXPECT_NE(with(key72.substr(0, 71)), with(key72));
    bf.Reset();
    EXPECT_EQ(Bytes(bf.Encrypt(text)), unkeyed);
}

#ifdef ZUL_TEST_OPENSSL
TEST(UtiBlowfish, MatchesOpenSslOnRandomKeysAndTexts)
{
    Random random(777);
    for (int round = 0; round < 200; ++round) {
        const std::string key = random.Text(static_cast<size_t>(1 + random.Below(80)), true);
        const std::string plain = random.Text(static_cast<size_t>(random.Below(600)));
        std::string padded = plain;
        padded.resize((plain.size() + 7) / 8 * 8, '\0');

        BF_KEY schedule;
        BF_set_key(&schedule, static_cast<int>(key.size()), reinterpret_cast<const unsigned char*>(key.data()));
        std::string expected(padded.size(), '\0');
        for (size_t i = 0; i < padded.size(); i += 8)
            BF_ecb_encrypt(reinterpret_cast<const unsigned char*>(padded.data() + i),
                           reinterpret_cast<unsigned char*>(&expected[i]), &schedule, BF_ENCRYPT);

        uti_Blowfish bf;
        bf.Set_Passwd(Cow(key));
        const cow_String cipher = bf.Encrypt(Cow(plain));
        ASSERT_EQ(Bytes(cipher), expected) << "key length " << key.size() << ", text length " << plain.size();
        EXPECT_EQ(Bytes(bf.Decrypt(cipher)), padded);
    }
}
#endif

// MD5 digests (uti_MD5) and the Blowfish cipher (uti_Blowfish). The digests are those of
// RFC 1321's test suite; the cipher text is the published test vector for the key
// "abcdefghijklmnopqrstuvwxyz" and the text "BLOWFISH".
//
// Output:
// | md5("") = d41d8cd98f00b204e9800998ecf8427e
// | md5("abc") = 900150983cd24fb0d6963f7d28e17f72
// | md5 in two pieces = 900150983cd24fb0d6963f7d28e17f72
// | blowfish("BLOWFISH") = 324ed0fef413a203
// | decrypted: "BLOWFISH"
// | "hello" enciphers to 8 bytes; deciphered: "hello" and 3 zero bytes of padding
#include <cstdio>

#include "ZULFNDUTI_BasicUtils.h"

namespace {

cow_String Hex(const cow_String& bytes)
{
    static const char digits[] = "0123456789abcdef";
    cow_String text;
    for (int i = 0; i < bytes.Length(); ++i) {
        const unsigned char b = static_cast<unsigned char>(bytes[i]);
        const char pair[2] = {digits[b >> 4], digits[b & 15]};
        text.append(pair, 2);
    }
    return text;
}

}  // namespace

int main()
{
    int count = 0;
    UTI_BasicUtils_initialize(count);

    // Digest() answers the 16 raw bytes and finishes the message; Reset() starts a new one.
    uti_MD5 md5;
    std::printf("md5(\"\") = %s\n", Hex(md5.Digest()).c_str());
    md5.Reset();
    std::printf("md5(\"abc\") = %s\n", Hex(md5.Append("abc").Digest()).c_str());
    md5.Reset();
    md5.Append("a", 1).Append("bc", 2);  // pieces of any size give the same digest
    std::printf("md5 in two pieces = %s\n", Hex(md5.Digest()).c_str());

    // Blowfish works on 8-byte blocks: Encrypt pads with zero bytes, Decrypt keeps the padding.
    uti_Blowfish cipher;
    cipher.Set_Passwd("abcdefghijklmnopqrstuvwxyz");
    const cow_String secret = cipher.Encrypt("BLOWFISH");
    std::printf("blowfish(\"BLOWFISH\") = %s\n", Hex(secret).c_str());
    std::printf("decrypted: \"%s\"\n", cipher.Decrypt(secret).c_str());

    const cow_String padded = cipher.Decrypt(cipher.Encrypt("hello"));
    int zeros = 0;
    for (int i = 5; i < padded.Length(); ++i)
        zeros += padded[i] == '\0';
    std::printf("\"hello\" enciphers to %d bytes; deciphered: \"%s\" and %d zero bytes of padding\n",
                cipher.Encrypt("hello").Length(), padded.c_str(), zeros);

    UTI_BasicUtils_finalize(count);
    return 0;
}

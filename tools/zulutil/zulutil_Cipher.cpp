// encrypt / decrypt with Blowfish or the rotor cipher; the key comes from a file.
//
// Blowfish works on 8-byte blocks and pads with zero bytes, so the tool enciphers the data's
// length (8 bytes, little-endian) in front of it and cuts the padding off again on decryption.
// The rotor cipher keeps the length as it is.
#include <cstdint>
#include <cstring>
#include <string>

#include "uti/uti_Blowfish.h"
#include "uti/uti_Rotor.h"
#include "zulutil.h"

namespace {

cow_String Binary(const std::string& bytes)
{
    cow_String s;
    char* buffer = s.GetWriteBuffer(static_cast<int>(bytes.size()) + 1);
    if (!bytes.empty())
        std::memcpy(buffer, bytes.data(), bytes.size());
    s.SetLength(static_cast<int>(bytes.size()));
    return s;
}

std::string Bytes(const cow_String& s)
{
    return std::string(s.c_str(), static_cast<size_t>(s.Length()));
}

// The key file's bytes without a trailing line break.
std::string ReadKey(const std::string& keyFile)
{
    std::string key = zulutil_ReadAll(keyFile);
    while (!key.empty() && (key.back() == '\n' || key.back() == '\r'))
        key.pop_back();
    return key;
}

std::string Blowfish(const std::string& key, const std::string& data, bool encrypt, bool& bad)
{
    uti_Blowfish cipher;
    cipher.Set_Passwd(Binary(key));
    if (encrypt) {
        std::string framed(8, '\0');
        uint64_t n = data.size();
        for (int i = 0; i < 8; ++i)
            framed[i] = static_cast<char>((n >> (8 * i)) & 0xFF);
        return Bytes(cipher.Encrypt(Binary(framed + data)));
    }
    if (data.size() < 8 || data.size() % 8 != 0) {
        bad = true;
        return std::string();
    }
    const std::string plain = Bytes(cipher.Decrypt(Binary(data)));
    uint64_t n = 0;
    for (int i = 0; i < 8; ++i)
        n |= static_cast<uint64_t>(static_cast<unsigned char>(plain[i])) << (8 * i);
    if (n > plain.size() - 8) {
        bad = true;
        return std::string();
    }
    return plain.substr(8, static_cast<size_t>(n));
}

}  // namespace

int zulutil_Cipher(const zulutil_Args& args, bool encrypt)
{
    const char* command = encrypt ? "encrypt" : "decrypt";
    const std::string cipherName = args.Value("cipher");
    const std::string keyFile = args.Value("keyfile");
    if (cipherName != "blowfish" && cipherName != "rotor")
        return zulutil_UsageError(command, "-cipher must be blowfish or rotor");
    if (keyFile.empty())
        return zulutil_UsageError(command, "-keyfile KEYFILE is required (the key is never taken from the command line)");
    const std::string key = ReadKey(keyFile);
    if (key.empty())
        return zulutil_UsageError(command, "the key file is empty");
    const std::string data = zulutil_ReadAll(args.Positional(1));
    std::string out;
    if (cipherName == "blowfish") {
        bool bad = false;
        out = Blowfish(key, data, encrypt, bad);
        if (bad)
            return zulutil_UsageError(command, "the input is not Blowfish data written by zulutil encrypt");
    } else {
        uti_Rotor rotor(Binary(key));
        out = Bytes(encrypt ? rotor.Encrypt(Binary(data)) : rotor.Decrypt(Binary(data)));
    }
    zulutil_WriteAll("-", out);
    return zulutil_Ok;
}

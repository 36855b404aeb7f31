// Blowfish and the rotor machine with key and text from the input. Blowfish: deciphering the
// ciphertext gives the text with its zero padding, the block form agrees with the string form,
// a key counts only up to its first zero byte, lengths that are not whole blocks are refused.
// Rotor: deciphering gives the text back, ciphering is repeatable and keeps the length, and
// every rotor's wiring is a permutation.
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>

#include "uti/uti_Blowfish.h"
#include "uti/uti_Rotor.h"
#include "zul_FuzzSupport.h"

namespace {

using zul_fuzz::Cow;
using zul_fuzz::Str;

void CheckBlowfish(const std::string& key, const std::string& text)
{
    uti_Blowfish cipher;
    cipher.Set_Passwd(Cow(key));
    const std::string encrypted = Str(cipher.Encrypt(Cow(text)));
    const size_t padded = (text.size() + 7) / 8 * 8;
    ZUL_FUZZ_CHECK(encrypted.size() == padded);
    std::string expected = text;
    expected.resize(padded, '\0');
    ZUL_FUZZ_CHECK(Str(cipher.Decrypt(Cow(encrypted))) == expected);

    // Only the key's bytes before its first zero count.
    uti_Blowfish shortKey;
    shortKey.Set_Passwd(cow_String(key.c_str()));
    ZUL_FUZZ_CHECK(Str(shortKey.Encrypt(Cow(text))) == encrypted);

    // The block form: native words, same round trip.
    std::vector<uti_Blowfish::DWord> blocks(padded / 8 + 1);
    std::memcpy(blocks.data(), expected.data(), padded);
    cipher.EncryptDWords(blocks.data(), static_cast<int>(padded));
    cipher.DecryptDWords(blocks.data(), static_cast<int>(padded));
    ZUL_FUZZ_CHECK(padded == 0 || std::memcmp(blocks.data(), expected.data(), padded) == 0);

    if (encrypted.size() >= 8) {
        bool refused = false;
        try {
            cipher.Decrypt(Cow(encrypted.substr(1)));
        } catch (const nex_TextException&) {
            refused = true;
        }
        ZUL_FUZZ_CHECK(refused);
        // Refusal changed nothing.
        ZUL_FUZZ_CHECK(Str(cipher.Decrypt(Cow(encrypted))) == expected);
    }
}

void CheckRotor(const std::string& key, const std::string& text, int rotors)
{
    uti_Rotor rotor(Cow(key));
    const std::string encrypted = Str(rotor.Encrypt(Cow(text)));
    ZUL_FUZZ_CHECK(encrypted.size() == text.size());
    ZUL_FUZZ_CHECK(Str(rotor.Encrypt(Cow(text))) == encrypted);
    ZUL_FUZZ_CHECK(Str(rotor.Decrypt(Cow(encrypted))) == text);
    std::string inPlace = encrypted;
    rotor.Decrypt(inPlace.empty() ? nullptr : &inPlace[0], static_cast<int>(inPlace.size()));
    ZUL_FUZZ_CHECK(inPlace == text);

    uti_Rotorobj machine(rotors, Cow(key));
    machine.Build();
    for (int r = 0; r < machine.Rotors(); ++r) {
        std::vector<bool> seen(static_cast<size_t>(machine.Size()), false);
        for (int v = 0; v < machine.Size(); ++v) {
            const int w = machine.Wiring(r, v);
            ZUL_FUZZ_CHECK(w >= 0 && w < machine.Size() && !seen[static_cast<size_t>(w)]);
            seen[static_cast<size_t>(w)] = true;
        }
        ZUL_FUZZ_CHECK(machine.Advance(r) % 2 == 1);
    }
    std::string bytes = text;
    machine.EncryptBytes(bytes.empty() ? nullptr : &bytes[0], static_cast<int>(bytes.size()));
    machine.Build();
    machine.DecryptBytes(bytes.empty() ? nullptr : &bytes[0], static_cast<int>(bytes.size()));
    ZUL_FUZZ_CHECK(bytes == text);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    zul_fuzz::Initialize();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider in(data, size);
    const int rotors = in.ConsumeIntegralInRange(1, 16);
    const std::string key = in.ConsumeRandomLengthString(96);
    const std::string text = in.ConsumeRemainingBytesAsString();
    zul_fuzz::Expect<>::Run([&] {
        CheckBlowfish(key, text);
        CheckRotor(key, text, rotors);
    });
    return 0;
}

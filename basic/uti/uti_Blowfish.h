/// @class uti_Blowfish
/// uti_Blowfish: the Blowfish block cipher (64-bit blocks, 16 rounds) in electronic-codebook mode.
///
/// Encrypt pads the text with zero bytes to a multiple of 8 and enciphers each 8-byte block read in
/// big-endian order (the published byte order); Decrypt deciphers a multiple of 8 bytes and leaves
/// any padding zeros attached. Set_Passwd runs the standard key schedule over the key's bytes up to
/// its first zero byte (at most 72 of them are used); an empty key leaves the unkeyed initial
/// tables. A length that is not a multiple of 8 raises nex_TextException before anything changes.
/// The object keeps only the cipher state, never the key.
/// Thread rule: one object (it holds the cipher state), one thread at a time.
#ifndef UTI_BLOWFISH_H
#define UTI_BLOWFISH_H

#include <cstdint>

#include "cow/cow_String.h"
#include "mem/mem_AllocationOperators.h"
#include "zul_BasicExport.h"

class ZUL_BASIC_API uti_Blowfish : public mem_AllocationOperators {
public:
    /// One 64-bit block as two native words, left half first.
    struct DWord {
        uint32_t m_Left;
        uint32_t m_Right;
    };

    uti_Blowfish();
    ~uti_Blowfish();

    /// The published initial P-array and S-boxes, no key.
    void Reset();
    void Set_Passwd(cow_String key);

    /// The ciphertext: the text zero-padded to a multiple of 8 bytes, enciphered.
    cow_String Encrypt(cow_String plain);
    /// The deciphered bytes, as long as the input (a multiple of 8).
    cow_String Decrypt(cow_String cipher);

    /// In place over byteCount bytes of native words (a multiple of 8).
    ///@{
    void EncryptDWords(DWord* blocks, int byteCount);
    void DecryptDWords(DWord* blocks, int byteCount);
    ///@}

private:
    enum { Rounds = 16 };
    /// Works on a copy of text, padded to paddedLength, in big-endian block order.
    cow_String Process(const cow_String& text, int paddedLength, bool encrypt) const;
    void EncryptBlock(uint32_t& left, uint32_t& right) const;
    void DecryptBlock(uint32_t& left, uint32_t& right) const;

    uint32_t m_P[Rounds + 2];
    uint32_t m_S[4][256];
};

#endif

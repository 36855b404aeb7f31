#include "uti/uti_Blowfish.h"

#include <cmath>
#include <cstring>

#include "mem/mem_Memory.h"
#include "nex/nex_Exception.h"
#include "uti/impl/uti_BlowfishPi.h"

namespace {

const char kByteOrderText[] = "Blowfish requires the input to be a multiple of 8 bytes.";
const char kEncryptText[] = "Blowfish encryption requires the input to be a multiple of 8 bytes (64 bits).";
const char kDecryptText[] = "Blowfish decryption requires the input to be a multiple of 8 bytes (64 bits).";

inline bool WholeBlocks(int byteCount) { return byteCount >= 0 && byteCount % 8 == 0; }

inline uint32_t LoadBE(const unsigned char* p)
{
    return uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | uint32_t(p[3]);
}

inline void StoreBE(unsigned char* p, uint32_t v)
{
    p[0] = static_cast<unsigned char>(v >> 24);
    p[1] = static_cast<unsigned char>(v >> 16);
    p[2] = static_cast<unsigned char>(v >> 8);
    p[3] = static_cast<unsigned char>(v);
}

}  // namespace

// One Feistel round: the right half takes F of the left half and the round's P entry.
#define BF_F(S, x) ((((S)[0][(x) >> 24] + (S)[1][((x) >> 16) & 0xff]) ^ (S)[2][((x) >> 8) & 0xff]) + (S)[3][(x) & 0xff])
#define BF_ROUND(S, P, l, r, n) (r) ^= BF_F(S, l) ^ (P)[n]

uti_Blowfish::uti_Blowfish() { Reset(); }

uti_Blowfish::~uti_Blowfish() {}

void uti_Blowfish::Reset()
{
    std::memcpy(m_P, uti_BlowfishPi, sizeof m_P);
    std::memcpy(m_S, uti_BlowfishPi + Rounds + 2, sizeof m_S);
}

void uti_Blowfish::Set_Passwd(cow_String key)
{
    Reset();
    const unsigned char* bytes = reinterpret_cast<const unsigned char*>(key.c_str());
    const size_t length = std::strlen(key.c_str());
    if (length == 0)
        return;  // no schedule at all: the unkeyed tables stay
    size_t j = 0;
    for (int i = 0; i < Rounds + 2; ++i) {
        uint32_t word = 0;
        for (int k = 0; k < 4; ++k) {
            word = (word << 8) | bytes[j];
            j = (j + 1 == length) ? 0 : j + 1;
        }
        m_P[i] ^= word;
    }
    uint32_t left = 0, right = 0;
    for (int i = 0; i < Rounds + 2; i += 2) {
        EncryptBlock(left, right);
        m_P[i] = left;
        m_P[i + 1] = right;
    }
    for (auto& box : m_S) {
        for (int i = 0; i < 256; i += 2) {
            EncryptBlock(left, right);
            box[i] = left;
            box[i + 1] = right;
        }
    }
}

void uti_Blowfish::EncryptBlock(uint32_t& left, uint32_t& right) const
{
    const uint32_t(*S)[256] = m_S;
    const uint32_t* P = m_P;
    uint32_t l = left ^ P[0], r = right;
    BF_ROUND(S, P, l, r, 1);
    BF_ROUND(S, P, r, l, 2);
    BF_ROUND(S, P, l, r, 3);
    BF_ROUND(S, P, r, l, 4);
    BF_ROUND(S, P, l, r, 5);
    BF_ROUND(S, P, r, l, 6);
    BF_ROUND(S, P, l, r, 7);
    BF_ROUND(S, P, r, l, 8);
    BF_ROUND(S, P, l, r, 9);
    BF_ROUND(S, P, r, l, 10);
    BF_ROUND(S, P, l, r, 11);
    BF_ROUND(S, P, r, l, 12);
    BF_ROUND(S, P, l, r, 13);
    BF_ROUND(S, P, r, l, 14);
    BF_ROUND(S, P, l, r, 15);
    BF_ROUND(S, P, r, l, 16);
    left = r ^ P[17];
    right = l;
}

void uti_Blowfish::DecryptBlock(uint32_t& left, uint32_t& right) const
{
    const uint32_t(*S)[256] = m_S;
    const uint32_t* P = m_P;
    uint32_t l = left ^ P[17], r = right;
    BF_ROUND(S, P, l, r, 16);
    BF_ROUND(S, P, r, l, 15);
    BF_ROUND(S, P, l, r, 14);
    BF_ROUND(S, P, r, l, 13);
    BF_ROUND(S, P, l, r, 12);
    BF_ROUND(S, P, r, l, 11);
    BF_ROUND(S, P, l, r, 10);
    BF_ROUND(S, P, r, l, 9);
    BF_ROUND(S, P, l, r, 8);
    BF_ROUND(S, P, r, l, 7);
    BF_ROUND(S, P, l, r, 6);
    BF_ROUND(S, P, r, l, 5);
    BF_ROUND(S, P, l, r, 4);
    BF_ROUND(S, P, r, l, 3);
    BF_ROUND(S, P, l, r, 2);
    BF_ROUND(S, P, r, l, 1);
    left = r ^ P[0];
    right = l;
}

void uti_Blowfish::EncryptDWords(DWord* blocks, int byteCount)
{
    if (!WholeBlocks(byteCount))
        NEX_RAISE(nex_TextException, kEncryptText);
    for (int i = 0, n = byteCount / 8; i < n; ++i)
        EncryptBlock(blocks[i].m_Left, blocks[i].m_Right);
}

void uti_Blowfish::DecryptDWords(DWord* blocks, int byteCount)
{
    if (!WholeBlocks(byteCount))
        NEX_RAISE(nex_TextException, kDecryptText);
    for (int i = 0, n = byteCount / 8; i < n; ++i)
        DecryptBlock(blocks[i].m_Left, blocks[i].m_Right);
}

cow_String uti_Blowfish::Encrypt(cow_String plain)
{
    const double blocks = std::ceil(plain.Length() / 8.0);
    return Process(plain, static_cast<int>(blocks * 8.0), true);
}

cow_String uti_Blowfish::Decrypt(cow_String cipher) { return Process(cipher, cipher.Length(), false); }

// The words of each block are read and written most significant byte first, which is the
// reversal of every 32-bit word before and after the block operation, done on the fly.
cow_String uti_Blowfish::Process(const cow_String& text, int paddedLength, bool encrypt) const
{
    if (!WholeBlocks(paddedLength))
        NEX_RAISE(nex_TextException, kByteOrderText);
    if (paddedLength == 0)
        return cow_String();
    const size_t size = static_cast<size_t>(paddedLength);
    unsigned char* buffer = static_cast<unsigned char*>(mem_OperatorNewThrow(size + 1));
    std::memcpy(buffer, text.c_str(), static_cast<size_t>(text.Length()));
    std::memset(buffer + text.Length(), 0, size + 1 - static_cast<size_t>(text.Length()));
    unsigned char* const end = buffer + size;
    if (encrypt) {
        for (unsigned char* p = buffer; p != end; p += 8) {
            uint32_t left = LoadBE(p), right = LoadBE(p + 4);
            EncryptBlock(left, right);
            StoreBE(p, left);
            StoreBE(p + 4, right);
        }
    } else {
        for (unsigned char* p = buffer; p != end; p += 8) {
            uint32_t left = LoadBE(p), right = LoadBE(p + 4);
            DecryptBlock(left, right);
            StoreBE(p, left);
            StoreBE(p + 4, right);
        }
    }
    return cow_String(reinterpret_cast<char*>(buffer), paddedLength, atr_StringBase::ADOPT);
}

#include "uti/uti_MD5.h"

#include <cstring>

#include "nex/nex_Exception.h"

namespace {

inline uint32_t Rotl(uint32_t x, int s) { return (x << s) | (x >> (32 - s)); }

inline uint32_t LoadLE(const unsigned char* p)
{
    return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}

inline void StoreLE(unsigned char* p, uint32_t v)
{
    p[0] = static_cast<unsigned char>(v);
    p[1] = static_cast<unsigned char>(v >> 8);
    p[2] = static_cast<unsigned char>(v >> 16);
    p[3] = static_cast<unsigned char>(v >> 24);
}

// The four round functions in forms that need fewer dependent operations than the textbook ones
// (same values): F selects y or z by x, G selects x or y by z with its two halves added, since they
// never share a set bit.
#define MD5_F(x, y, z) ((((y) ^ (z)) & (x)) ^ (z))
#define MD5_G(x, y, z) (((x) & (z)) + ((y) & ~(z)))
#define MD5_H(x, y, z) ((x) ^ (y) ^ (z))
#define MD5_I(x, y, z) ((y) ^ ((x) | ~(z)))
#define MD5_STEP(f, a, b, c, d, w, k, s)        \
    a += f(b, c, d) + (w) + (k);                \
    a = Rotl(a, s) + b

}  // namespace

uti_MD5::uti_MD5() { Reset(); }

uti_MD5& uti_MD5::Reset()
{
    m_Digest = cow_String();
    m_BitsLow = 0;
    m_BitsHigh = 0;
    m_A = 0x67452301u;
    m_B = 0xefcdab89u;
    m_C = 0x98badcfeu;
    m_D = 0x10325476u;
    return *this;
}

void uti_MD5::CheckOpen() const
{
    if (!m_Digest.IsEmpty())
        NEX_RAISE(nex_AssertException, "m_Digest.Empty()");
}

uti_MD5& uti_MD5::Append(const char* data, int length)
{
    return Append(reinterpret_cast<const unsigned char*>(data), length);
}

uti_MD5& uti_MD5::Append(const cow_String& text) { return Append(text.c_str(), text.Length()); }

uti_MD5& uti_MD5::Append(const unsigned char* data, int length)
{
    CheckOpen();
    NEX_ASSERT(length >= 0);
    NEX_ASSERT(data != nullptr || length == 0);
    size_t n = static_cast<size_t>(length);
    const size_t used = (m_BitsLow >> 3) & 63;
    const uint32_t bitsLow = m_BitsLow + (static_cast<uint32_t>(n) << 3);
    m_BitsHigh += static_cast<uint32_t>(n >> 29) + (bitsLow < m_BitsLow ? 1 : 0);
    m_BitsLow = bitsLow;

    if (used != 0) {
        const size_t take = 64 - used;
        if (n < take) {
            std::memcpy(m_Buffer + used, data, n);
            return *this;
        }
        std::memcpy(m_Buffer + used, data, take);
        Compress(m_Buffer, 1);
        data += take;
        n -= take;
    }
    if (n >= 64) {
        Compress(data, n / 64);
        data += n & ~size_t(63);
        n &= 63;
    }
    if (n != 0)
        std::memcpy(m_Buffer, data, n);
    return *this;
}

cow_String uti_MD5::Digest()
{
    if (!m_Digest.IsEmpty())
        return m_Digest;
    unsigned char length[8];
    StoreLE(length, m_BitsLow);
    StoreLE(length + 4, m_BitsHigh);
    static const unsigned char padding[64] = {0x80};
    const unsigned byteCount = m_BitsLow >> 3;
    // ((-9 - count) mod 64) + 1 bytes leave exactly 8 bytes free in the last block.
    const int padLength = static_cast<int>((64u + 55u - (byteCount & 63u)) % 64u) + 1;
    Append(padding, padLength);
    Append(length, 8);

    // Written in place: a string made from a pointer and a count would end at a zero byte.
    cow_String digest;
    unsigned char* out = reinterpret_cast<unsigned char*>(digest.GetWriteBuffer(16));
    StoreLE(out, m_A);
    StoreLE(out + 4, m_B);
    StoreLE(out + 8, m_C);
    StoreLE(out + 12, m_D);
    digest.SetLength(16);
    m_Digest = digest;
    return m_Digest;
}

void uti_MD5::Compress(const unsigned char* p, size_t blocks)
{
    uint32_t a = m_A, b = m_B, c = m_C, d = m_D;
    for (; blocks != 0; --blocks, p += 64) {
        uint32_t x[16];
        for (int i = 0; i < 16; ++i)
            x[i] = LoadLE(p + 4 * i);
        const uint32_t aa = a, bb = b, cc = c, dd = d;

        MD5_STEP(MD5_F, a, b, c, d, x[0], 0xd76aa478u, 7);
        MD5_STEP(MD5_F, d, a, b, c, x[1], 0xe8c7b756u, 12);
        MD5_STEP(MD5_F, c, d, a, b, x[2], 0x242070dbu, 17);
        MD5_STEP(MD5_F, b, c, d, a, x[3], 0xc1bdceeeu, 22);
        MD5_STEP(MD5_F, a, b, c, d, x[4], 0xf57c0fafu, 7);
        MD5_STEP(MD5_F, d, a, b, c, x[5], 0x4787c62au, 12);
        MD5_STEP(MD5_F, c, d, a, b, x[6], 0xa8304613u, 17);
        MD5_STEP(MD5_F, b, c, d, a, x[7], 0xfd469501u, 22);
        MD5_STEP(MD5_F, a, b, c, d, x[8], 0x698098d8u, 7);
        MD5_STEP(MD5_F, d, a, b, c, x[9], 0x8b44f7afu, 12);
        MD5_STEP(MD5_F, c, d, a, b, x[10], 0xffff5bb1u, 17);
        MD5_STEP(MD5_F, b, c, d, a, x[11], 0x895cd7beu, 22);
        MD5_STEP(MD5_F, a, b, c, d, x[12], 0x6b901122u, 7);
        MD5_STEP(MD5_F, d, a, b, c, x[13], 0xfd987193u, 12);
        MD5_STEP(MD5_F, c, d, a, b, x[14], 0xa679438eu, 17);
        MD5_STEP(MD5_F, b, c, d, a, x[15], 0x49b40821u, 22);

        MD5_STEP(MD5_G, a, b, c, d, x[1], 0xf61e2562u, 5);
        MD5_STEP(MD5_G, d, a, b, c, x[6], 0xc040b340u, 9);
        MD5_STEP(MD5_G, c, d, a, b, x[11], 0x265e5a51u, 14);
        MD5_STEP(MD5_G, b, c, d, a, x[0], 0xe9b6c7aau, 20);
        MD5_STEP(MD5_G, a, b, c, d, x[5], 0xd62f105du, 5);
        MD5_STEP(MD5_G, d, a, b, c, x[10], 0x02441453u, 9);
        MD5_STEP(MD5_G, c, d, a, b, x[15], 0xd8a1e681u, 14);
        MD5_STEP(MD5_G, b, c, d, a, x[4], 0xe7d3fbc8u, 20);
        MD5_STEP(MD5_G, a, b, c, d, x[9], 0x21e1cde6u, 5);
        MD5_STEP(MD5_G, d, a, b, c, x[14], 0xc33707d6u, 9);
        MD5_STEP(MD5_G, c, d, a, b, x[3], 0xf4d50d87u, 14);
        MD5_STEP(MD5_G, b, c, d, a, x[8], 0x455a14edu, 20);
        MD5_STEP(MD5_G, a, b, c, d, x[13], 0xa9e3e905u, 5);
        MD5_STEP(MD5_G, d, a, b, c, x[2], 0xfcefa3f8u, 9);
        MD5_STEP(MD5_G, c, d, a, b, x[7], 0x676f02d9u, 14);
        MD5_STEP(MD5_G, b, c, d, a, x[12], 0x8d2a4c8au, 20);

        MD5_STEP(MD5_H, a, b, c, d, x[5], 0xfffa3942u, 4);
        MD5_STEP(MD5_H, d, a, b, c, x[8], 0x8771f681u, 11);
        MD5_STEP(MD5_H, c, d, a, b, x[11], 0x6d9d6122u, 16);
        MD5_STEP(MD5_H, b, c, d, a, x[14], 0xfde5380cu, 23);
        MD5_STEP(MD5_H, a, b, c, d, x[1], 0xa4beea44u, 4);
        MD5_STEP(MD5_H, d, a, b, c, x[4], 0x4bdecfa9u, 11);
        MD5_STEP(MD5_H, c, d, a, b, x[7], 0xf6bb4b60u, 16);
        MD5_STEP(MD5_H, b, c, d, a, x[10], 0xbebfbc70u, 23);
        MD5_STEP(MD5_H, a, b, c, d, x[13], 0x289b7ec6u, 4);
        MD5_STEP(MD5_H, d, a, b, c, x[0], 0xeaa127fau, 11);
        MD5_STEP(MD5_H, c, d, a, b, x[3], 0xd4ef3085u, 16);
        MD5_STEP(MD5_H, b, c, d, a, x[6], 0x04881d05u, 23);
        MD5_STEP(MD5_H, a, b, c, d, x[9], 0xd9d4d039u, 4);
        MD5_STEP(MD5_H, d, a, b, c, x[12], 0xe6db99e5u, 11);
        MD5_STEP(MD5_H, c, d, a, b, x[15], 0x1fa27cf8u, 16);
        MD5_STEP(MD5_H, b, c, d, a, x[2], 0xc4ac5665u, 23);

        MD5_STEP(MD5_I, a, b, c, d, x[0], 0xf4292244u, 6);
        MD5_STEP(MD5_I, d, a, b, c, x[7], 0x432aff97u, 10);
        MD5_STEP(MD5_I, c, d, a, b, x[14], 0xab9423a7u, 15);
        MD5_STEP(MD5_I, b, c, d, a, x[5], 0xfc93a039u, 21);
        MD5_STEP(MD5_I, a, b, c, d, x[12], 0x655b59c3u, 6);
        MD5_STEP(MD5_I, d, a, b, c, x[3], 0x8f0ccc92u, 10);
        MD5_STEP(MD5_I, c, d, a, b, x[10], 0xffeff47du, 15);
        MD5_STEP(MD5_I, b, c, d, a, x[1], 0x85845dd1u, 21);
        MD5_STEP(MD5_I, a, b, c, d, x[8], 0x6fa87e4fu, 6);
        MD5_STEP(MD5_I, d, a, b, c, x[15], 0xfe2ce6e0u, 10);
        MD5_STEP(MD5_I, c, d, a, b, x[6], 0xa3014314u, 15);
        MD5_STEP(MD5_I, b, c, d, a, x[13], 0x4e0811a1u, 21);
        MD5_STEP(MD5_I, a, b, c, d, x[4], 0xf7537e82u, 6);
        MD5_STEP(MD5_I, d, a, b, c, x[11], 0xbd3af235u, 10);
        MD5_STEP(MD5_I, c, d, a, b, x[2], 0x2ad7d2bbu, 15);
        MD5_STEP(MD5_I, b, c, d, a, x[9], 0xeb86d391u, 21);

        a += aa;
        b += bb;
        c += cc;
        d += dd;
    }
    m_A = a;
    m_B = b;
    m_C = c;
    m_D = d;
}

#include <array>
#include <cstdint>
#include <cstring>

#include <immintrin.h>

#include "utl/utl_MultisectionFile.h"

namespace {

// Tables for CRC-32/MPEG-2 (polynomial 0x04C11DB7, most significant bit first). Table k holds the
// CRC contribution of a byte followed by k zero bytes, so sixteen bytes can be folded in one
// step with the same result as the byte-at-a-time definition. Built at compile time.
typedef std::array<std::array<uint32_t, 256>, 16> CrcTables;

constexpr CrcTables MakeCrcTables()
{
    CrcTables t{};
    for (uint32_t b = 0; b < 256; ++b) {
        uint32_t v = b << 24;
        for (int bit = 0; bit < 8; ++bit)
            v = (v & 0x80000000u) ? (v << 1) ^ 0x04C11DB7u : (v << 1);
        t[0][b] = v;
    }
    for (int k = 1; k < 16; ++k)
        for (uint32_t b = 0; b < 256; ++b)
            t[k][b] = (t[k - 1][b] << 8) ^ t[0][t[k - 1][b] >> 24];
    return t;
}

constexpr CrcTables kCrc = MakeCrcTables();

inline uint32_t LoadBigEndian(const unsigned char* p)
{
    return (uint32_t(p[0]) << 24) | (uint32_t(p[1]) << 16) | (uint32_t(p[2]) << 8) | uint32_t(p[3]);
}

// Folding constants x^d mod P (d in bits) for the carry-less path: folding a 128-bit block
// forward by 128 bits multiplies its halves by x^192 and x^128, by 512 bits by x^576 and x^512.
const uint64_t kX192 = 0xC5B9CD4Cu, kX128 = 0xE8A45605u;
const uint64_t kX576 = 0x8833794Cu, kX512 = 0xE6228B11u;
const size_t kFoldMinimum = 128;

// Blocks are held most significant byte first, so that register bit i is the coefficient of
// x^i of the message polynomial (the CRC works most significant bit first).
__attribute__((target("pclmul,ssse3"))) inline __m128i LoadReversed(const unsigned char* p)
{
    const __m128i reverse = _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    return _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)), reverse);
}

// a * x^d + b (mod P, up to a multiple of P): the high half times x^(d+64), the low half times x^d.
__attribute__((target("pclmul,ssse3"))) inline __m128i Fold(__m128i a, __m128i constants, __m128i b)
{
    const __m128i high = _mm_clmulepi64_si128(a, constants, 0x11);
    const __m128i low = _mm_clmulepi64_si128(a, constants, 0x00);
    return _mm_xor_si128(_mm_xor_si128(high, low), b);
}

__attribute__((target("pclmul,ssse3"))) uint32_t CrcFolded(const unsigned char* p, size_t length, uint32_t crc)
{
    const __m128i by512 = _mm_set_epi64x(static_cast<long long>(kX576), static_cast<long long>(kX512));
    const __m128i by128 = _mm_set_epi64x(static_cast<long long>(kX192), static_cast<long long>(kX128));

    // The running CRC enters as the first 32 bits of the message.
    __m128i x0 = _mm_xor_si128(LoadReversed(p), _mm_set_epi32(static_cast<int>(crc), 0, 0, 0));
    __m128i x1 = LoadReversed(p + 16);
    __m128i x2 = LoadReversed(p + 32);
    __m128i x3 = LoadReversed(p + 48);
    p += 64;
    length -= 64;
    for (; length >= 64; p += 64, length -= 64) {
        x0 = Fold(x0, by512, LoadReversed(p));
        x1 = Fold(x1, by512, LoadReversed(p + 16));
        x2 = Fold(x2, by512, LoadReversed(p + 32));
        x3 = Fold(x3, by512, LoadReversed(p + 48));
    }
    __m128i x = Fold(Fold(Fold(x0, by128, x1), by128, x2), by128, x3);
    for (; length >= 16; p += 16, length -= 16)
        x = Fold(x, by128, LoadReversed(p));

    // The CRC of the 16 folded bytes, from a zero register, is the register after the prefix.
    const __m128i reverse = _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    unsigned char folded[16];
    _mm_storeu_si128(reinterpret_cast<__m128i*>(folded), _mm_shuffle_epi8(x, reverse));
    return utl_MultisectionCrcTable(p, length, utl_MultisectionCrcTable(folded, 16, 0));
}

bool HasCarryLessMultiply()
{
    static const bool has = __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("ssse3");
    return has;
}

}  // namespace

uint32_t utl_MultisectionCrcTable(const void* data, size_t length, uint32_t crc)
{
    const unsigned char* p = static_cast<const unsigned char*>(data);
    for (; length >= 16; p += 16, length -= 16) {
        const uint32_t a = crc ^ LoadBigEndian(p);
        const uint32_t b = LoadBigEndian(p + 4);
        const uint32_t c = LoadBigEndian(p + 8);
        const uint32_t d = LoadBigEndian(p + 12);
        crc = kCrc[15][a >> 24] ^ kCrc[14][(a >> 16) & 0xFFu] ^ kCrc[13][(a >> 8) & 0xFFu] ^ kCrc[12][a & 0xFFu] ^
              kCrc[11][b >> 24] ^ kCrc[10][(b >> 16) & 0xFFu] ^ kCrc[9][(b >> 8) & 0xFFu] ^ kCrc[8][b & 0xFFu] ^
              kCrc[7][c >> 24] ^ kCrc[6][(c >> 16) & 0xFFu] ^ kCrc[5][(c >> 8) & 0xFFu] ^ kCrc[4][c & 0xFFu] ^
              kCrc[3][d >> 24] ^ kCrc[2][(d >> 16) & 0xFFu] ^ kCrc[1][(d >> 8) & 0xFFu] ^ kCrc[0][d & 0xFFu];
    }
    for (; length > 0; ++p, --length)
        crc = kCrc[0][((crc >> 24) ^ *p) & 0xFFu] ^ (crc << 8);
    return crc;
}

uint32_t utl_MultisectionCrc(const void* data, size_t length, uint32_t crc)
{
    if (length >= kFoldMinimum && HasCarryLessMultiply())
        return CrcFolded(static_cast<const unsigned char*>(data), length, crc);
    return utl_MultisectionCrcTable(data, length, crc);
}

#include "utl/utl_Base64.h"

#include <climits>
#include <cstdint>
#include <cstring>

#include "atr/atr_translate.h"
#include "mem/mem_Memory.h"

namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+!";
const size_t kLineBytes = 57;   // input bytes per line
const size_t kLineGroups = 19;  // groups of 3 per line

// Every 12-bit value as its two characters: one lookup per half group.
struct PairTable {
    char pair[4096][2];
    constexpr PairTable() : pair()
    {
        for (int v = 0; v < 4096; ++v) {
            pair[v][0] = kAlphabet[v >> 6];
            pair[v][1] = kAlphabet[v & 63];
        }
    }
};
constexpr PairTable kPairs;

// Decoding: one table per position in the group, each value already shifted to its place, so that a
// group is four lookups OR-ed together. Characters outside the alphabet carry kBad, which survives
// the OR and is tested once per group.
const uint32_t kBad = 0x01000000u;
struct DecodeTables {
    uint32_t at[4][256];
    constexpr DecodeTables() : at()
    {
        for (int p = 0; p < 4; ++p)
            for (int c = 0; c < 256; ++c)
                at[p][c] = kBad;
        for (int v = 0; v < 64; ++v) {
            const unsigned char c = static_cast<unsigned char>(kAlphabet[v]);
            for (int p = 0; p < 4; ++p)
                at[p][c] = static_cast<uint32_t>(v) << (18 - 6 * p);
        }
    }
};
constexpr DecodeTables kDecode;

atr_String RejectText(const char* what, size_t offset)
{
    return atr_translate("*** Error: Invalid base64 text: %1$s at offset %2$llu")
        .Arg(what)
        .Arg(static_cast<unsigned long long>(offset))
        .Result();
}

inline uint16_t Pair(uint64_t v)
{
    uint16_t p;
    std::memcpy(&p, kPairs.pair[v & 0xFFF], 2);
    return p;
}

inline char* EncodeGroups(const unsigned char* in, size_t groups, char* out)
{
    // Two groups per step from one 8-byte load while at least 8 input bytes are left; the top
    // 48 bits of the big-endian value are four 12-bit halves (both targets are little-endian x86-64).
    size_t g = 0;
    for (; g + 3 <= groups; g += 2, in += 6, out += 8) {
        uint64_t v;
        std::memcpy(&v, in, 8);
        v = __builtin_bswap64(v);
        const uint64_t chars = uint64_t(Pair(v >> 52)) | (uint64_t(Pair(v >> 40)) << 16) |
                               (uint64_t(Pair(v >> 28)) << 32) | (uint64_t(Pair(v >> 16)) << 48);
        std::memcpy(out, &chars, 8);
    }
    for (; g < groups; ++g, in += 3, out += 4) {
        const uint32_t v = (uint32_t(in[0]) << 16) | (uint32_t(in[1]) << 8) | in[2];
        std::memcpy(out, kPairs.pair[v >> 12], 2);
        std::memcpy(out + 2, kPairs.pair[v & 0xFFF], 2);
    }
    return out;
}

inline uint32_t GroupValue(const unsigned char* s)
{
    return kDecode.at[0][s[0]] | kDecode.at[1][s[1]] | kDecode.at[2][s[2]] | kDecode.at[3][s[3]];
}

// Decodes whole groups until one holds a character outside the alphabet or fewer than four
// characters are left; returns the offset where it stopped.
inline size_t DecodeGroups(const unsigned char* s, size_t at, size_t length, unsigned char*& out)
{
    unsigned char* o = out;
    while (length - at >= 4) {
        const uint32_t v = GroupValue(s + at);
        if (v & kBad)
            break;
        o[0] = static_cast<unsigned char>(v >> 16);
        o[1] = static_cast<unsigned char>(v >> 8);
        o[2] = static_cast<unsigned char>(v);
        o += 3;
        at += 4;
    }
    out = o;
    return at;
}

inline bool InAlphabet(unsigned char c)
{
    return (kDecode.at[3][c] & kBad) == 0;
}

}  // namespace

size_t utl_base64EncodedLength(size_t length, bool lineBreaks)
{
    size_t chars = (length + 2) / 3 * 4;
    if (lineBreaks)
        chars += length / kLineBytes + (length % kLineBytes ? 1 : 0);
    return chars;
}

size_t utl_base64EncodeTo(const unsigned char* data, size_t length, bool lineBreaks, char* out)
{
    char* const start = out;
    size_t groups = length / 3;
    if (lineBreaks) {
        for (; groups >= kLineGroups; groups -= kLineGroups, data += kLineBytes) {
            out = EncodeGroups(data, kLineGroups, out);
            *out++ = '\n';
        }
    }
    out = EncodeGroups(data, groups, out);
    data += groups * 3;
    const size_t rest = length % 3;
    if (rest) {
        const uint32_t v = (uint32_t(data[0]) << 16) | (rest == 2 ? uint32_t(data[1]) << 8 : 0u);
        out[0] = kAlphabet[v >> 18];
        out[1] = kAlphabet[(v >> 12) & 63];
        out[2] = rest == 2 ? kAlphabet[(v >> 6) & 63] : '=';
        out[3] = '=';
        out += 4;
    }
    if (lineBreaks && length % kLineBytes)
        *out++ = '\n';
    return static_cast<size_t>(out - start);
}

namespace {

// Text with line breaks is what the encoder writes: lines of 76 characters, a shorter last one,
// every line ended by a newline. Anything else is refused before decoding.
void CheckLineLayout(const char* text, size_t length)
{
    const size_t kLineChars = kLineBytes / 3 * 4;
    size_t lineStart = 0;
    while (lineStart < length) {
        const void* nl = std::memchr(text + lineStart, '\n', length - lineStart);
        if (!nl)
            NEX_RAISE(utl_Base64Exception, RejectText("missing newline at the end of the text", length));
        const size_t end = static_cast<size_t>(static_cast<const char*>(nl) - text);
        const size_t chars = end - lineStart;
        const bool last = end + 1 == length;
        if (chars == 0 || chars > kLineChars || (!last && chars != kLineChars))
            NEX_RAISE(utl_Base64Exception, RejectText("line of the wrong length", lineStart));
        lineStart = end + 1;
    }
}

}  // namespace

size_t utl_base64DecodeTo(const char* text, size_t length, bool lineBreaks, unsigned char* out)
{
    if (lineBreaks)
        CheckLineLayout(text, length);
    const unsigned char* s = reinterpret_cast<const unsigned char*>(text);
    unsigned char* const start = out;
    size_t at = 0;
    for (;;) {
        at = DecodeGroups(s, at, length, out);
        if (at == length)
            break;
        if (s[at] == '\n') {
            if (!lineBreaks)
                NEX_RAISE(utl_Base64Exception, RejectText("newline without line breaks", at));
            ++at;
            continue;
        }
        // The group that stopped the fast loop: the padded last group, or a fault.
        size_t bad = at;
        while (bad < length && bad < at + 4 && InAlphabet(s[bad]))
            ++bad;
        if (bad == length)
            NEX_RAISE(utl_Base64Exception, RejectText("incomplete group", at));
        const size_t kept = bad - at;  // 2 or 3 characters, then padding to 4
        if (s[bad] != '=' || kept < 2 || kept > 3) {
            const char* what = s[bad] == '='
                                   ? "misplaced padding"
                                   : (s[bad] == '\n' ? "newline inside a group" : "character outside the alphabet");
            NEX_RAISE(utl_Base64Exception, RejectText(what, bad));
        }
        if (kept == 2 && (length - bad < 2 || s[bad + 1] != '='))
            NEX_RAISE(utl_Base64Exception,
                      RejectText(length - bad < 2 ? "incomplete group" : "misplaced padding", bad + 1));
        const uint32_t v = kDecode.at[0][s[at]] | kDecode.at[1][s[at + 1]] | (kept == 3 ? kDecode.at[2][s[at + 2]] : 0u);
        if (v & (kept == 3 ? 0xFFu : 0xFFFFu))
            NEX_RAISE(utl_Base64Exception, RejectText("unused bits set in the last group", at));
        *out++ = static_cast<unsigned char>(v >> 16);
        if (kept == 3)
            *out++ = static_cast<unsigned char>(v >> 8);
        for (at += 4; at < length; ++at) {
            if (s[at] != '\n' || !lineBreaks)
                NEX_RAISE(utl_Base64Exception, RejectText("text after the padded group", at));
        }
        break;
    }
    return static_cast<size_t>(out - start);
}

cow_String utl_base64Encode(cow_String& data, bool lineBreaks)
{
    const size_t length = static_cast<size_t>(data.Length());
    if (length == 0)
        return cow_String();
    const size_t chars = utl_base64EncodedLength(length, lineBreaks);
    if (chars > static_cast<size_t>(INT_MAX) - 64)
        NEX_RAISE(utl_Base64Exception, atr_String("memory allocation failure"));
    char* buffer = static_cast<char*>(mem_Malloc(chars + 1));
    if (!buffer)
        NEX_RAISE(utl_Base64Exception, atr_String("memory allocation failure"));
    utl_base64EncodeTo(reinterpret_cast<const unsigned char*>(data.c_str()), length, lineBreaks, buffer);
    return cow_String(buffer, static_cast<int>(chars), atr_StringBase::ADOPT);
}

cow_String utl_base64Decode(cow_String& text, bool lineBreaks)
{
    const size_t length = static_cast<size_t>(text.Length());
    if (length == 0)
        return cow_String();
    unsigned char* buffer = static_cast<unsigned char*>(mem_Malloc(length / 4 * 3 + 1));
    if (!buffer)
        NEX_RAISE(utl_Base64Exception, atr_String("memory allocation failure"));
    size_t made = 0;
    try {
        made = utl_base64DecodeTo(text.c_str(), length, lineBreaks, buffer);
    } catch (...) {
        mem_Free(buffer);
        throw;
    }
    return cow_String(reinterpret_cast<char*>(buffer), static_cast<int>(made), atr_StringBase::ADOPT);
}

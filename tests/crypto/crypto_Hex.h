// Byte strings for the digest and cipher tests: hex conversion and a repeatable random source.
#ifndef CRYPTO_HEX_H
#define CRYPTO_HEX_H

#include <cstdint>
#include <cstring>
#include <string>

#include "cow/cow_String.h"

namespace crypto_test {

inline std::string Bytes(const cow_String& s) { return std::string(s.c_str(), static_cast<size_t>(s.Length())); }

// Through the write buffer: a string made from a pointer and a count ends at a zero byte.
inline cow_String Cow(const std::string& s)
{
    cow_String out;
    if (!s.empty()) {
        std::memcpy(out.GetWriteBuffer(static_cast<int>(s.size())), s.data(), s.size());
        out.SetLength(static_cast<int>(s.size()));
    }
    return out;
}

inline std::string Hex(const std::string& bytes)
{
    static const char digits[] = "0123456789abcdef";
    std::string out;
    for (unsigned char c : bytes) {
        out += digits[c >> 4];
        out += digits[c & 15];
    }
    return out;
}

inline std::string Unhex(const std::string& hex)
{
    std::string out;
    for (size_t i = 0; i + 1 < hex.size(); i += 2)
        out += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    return out;
}

// A small linear-congruential source, the same on every platform.
class Random {
public:
    explicit Random(uint32_t seed) : m_state(seed) {}
    uint32_t Next()
    {
        m_state = m_state * 1664525u + 1013904223u;
        return m_state >> 8;
    }
    int Below(int n) { return static_cast<int>(Next() % static_cast<uint32_t>(n)); }
    std::string Text(size_t n, bool noZero = false)
    {
        std::string s(n, '\0');
        for (char& c : s)
            c = static_cast<char>(noZero ? 1 + Below(255) : Below(256));
        return s;
    }

private:
    uint32_t m_state;
};

}  // namespace crypto_test

#endif

/// @class LongKey
/// LongKey: a fixed set of 128 bit flags used as a compact key.
///
/// Four 32-bit words, word 0 holding bits 0-31 ... word 3 bits 96-127. Keys combine with | and &
/// and order as 128-bit unsigned numbers (word 3 first). Bit numbers of 128 or more are outside
/// the key: setBits ignores them and hasBit answers false.
/// Word(w) does not check w: 0 <= w < 4.
/// Thread rule: a plain value; copies are independent.
#ifndef COW_LONGKEY_H
#define COW_LONGKEY_H

#include <cstdint>

class LongKey {
public:
    LongKey() : m_words{0, 0, 0, 0} {}

    void setBits(unsigned int n, const unsigned int* bits)
    {
        for (unsigned int i = 0; i < n; ++i)
            if (bits[i] < 128)
                m_words[bits[i] / 32] |= 1u << (bits[i] % 32);
    }

    bool hasBit(unsigned int b) const { return b < 128 && (m_words[b / 32] >> (b % 32)) & 1u; }

    LongKey& operator&=(const LongKey& o)
    {
        for (int w = 0; w < 4; ++w)
            m_words[w] &= o.m_words[w];
        return *this;
    }
    LongKey& operator|=(const LongKey& o)
    {
        for (int w = 0; w < 4; ++w)
            m_words[w] |= o.m_words[w];
        return *this;
    }

    uint32_t Word(int w) const { return m_words[w]; }

    friend LongKey operator&(const LongKey& a, const LongKey& b) { return LongKey(a) &= b; }
    friend LongKey operator|(const LongKey& a, const LongKey& b) { return LongKey(a) |= b; }
    friend bool operator==(const LongKey& a, const LongKey& b)
    {
        return a.m_words[0] == b.m_words[0] && a.m_words[1] == b.m_words[1] && a.m_words[2] == b.m_words[2] &&
               a.m_words[3] == b.m_words[3];
    }
    friend bool operator!=(const LongKey& a, const LongKey& b) { return !(a == b); }
    friend bool operator>(const LongKey& a, const LongKey& b)
    {
        for (int w = 3; w >= 0; --w)
            if (a.m_words[w] != b.m_words[w])
                return a.m_words[w] > b.m_words[w];
        return false;
    }
    friend bool operator<(const LongKey& a, const LongKey& b) { return !(a == b) && !(a > b); }

private:
    uint32_t m_words[4];
};

#endif

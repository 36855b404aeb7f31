#include "omi/omi_BlkBitVect.h"

#include <cstring>

#include "mem/mem_Memory.h"

namespace {

int BlocksFor(int bits) { return (bits + 31) >> 5; }

// Highest index Set accepts: block arithmetic stays inside int.
const int kMaxIndex = 0x7FFFFFFF - 64;

int PopCount(uint32_t v)
{
    int n = 0;
    for (; v; v &= v - 1)
        ++n;
    return n;
}

}  // namespace

omi_BlkBitVect::omi_BlkBitVect() : m_blocks(nullptr), m_size(0), m_capacity(0) {}

omi_BlkBitVect::omi_BlkBitVect(int size) : m_blocks(nullptr), m_size(0), m_capacity(0) { Resize(size); }

omi_BlkBitVect::omi_BlkBitVect(const omi_BlkBitVect& o) : m_blocks(nullptr), m_size(0), m_capacity(0)
{
    const int n = BlocksFor(o.m_size);
    if (n) {
        m_blocks = static_cast<uint32_t*>(mem_OperatorNewThrow(sizeof(uint32_t) * static_cast<size_t>(n)));
        std::memcpy(m_blocks, o.m_blocks, sizeof(uint32_t) * static_cast<size_t>(n));
        m_capacity = n;
    }
    m_size = o.m_size;
}

omi_BlkBitVect::omi_BlkBitVect(omi_BlkBitVect&& o) noexcept
    : m_blocks(o.m_blocks), m_size(o.m_size), m_capacity(o.m_capacity)
{
    o.m_blocks = nullptr;
    o.m_size = o.m_capacity = 0;
}

omi_BlkBitVect& omi_BlkBitVect::operator=(const omi_BlkBitVect& o)
{
    if (this != &o) {
        omi_BlkBitVect copy(o);
        *this = static_cast<omi_BlkBitVect&&>(copy);
    }
    return *this;
}

omi_BlkBitVect& omi_BlkBitVect::operator=(omi_BlkBitVect&& o) noexcept
{
    if (this != &o) {
        mem_Free(m_blocks);
        m_blocks = o.m_blocks;
        m_size = o.m_size;
        m_capacity = o.m_capacity;
        o.m_blocks = nullptr;
        o.m_size = o.m_capacity = 0;
    }
    return *this;
}

omi_BlkBitVect::~omi_BlkBitVect() { mem_Free(m_blocks); }

void omi_BlkBitVect::Reserve(int bits)
{
    const int need = BlocksFor(bits);
    if (need <= m_capacity)
        return;
    int cap = m_capacity * 2;
    if (cap < need)
        cap = need;
    uint32_t* b = static_cast<uint32_t*>(mem_OperatorNewThrow(sizeof(uint32_t) * static_cast<size_t>(cap)));
    std::memset(b, 0, sizeof(uint32_t) * static_cast<size_t>(cap));
    if (m_blocks)
        std::memcpy(b, m_blocks, sizeof(uint32_t) * static_cast<size_t>(BlocksFor(m_size)));
    mem_Free(m_blocks);
    m_blocks = b;
    m_capacity = cap;
}

void omi_BlkBitVect::Set(int index)
{
    if (index < 0 || index > kMaxIndex)
        return;
    if (index >= m_size)
        Resize(index + 1);
    m_blocks[index >> 5] |= 1u << (index & 31);
}

void omi_BlkBitVect::Clear(int index)
{
    if (index < 0 || index >= m_size)
        return;
    m_blocks[index >> 5] &= ~(1u << (index & 31));
}

void omi_BlkBitVect::Resize(int n)
{
    if (n < 0)
        n = 0;
    if (n > kMaxIndex + 1)
        n = kMaxIndex + 1;
    if (n > m_size) {
        Reserve(n);
    } else if (n < m_size) {
        // Bits past the new end are cleared, so that growing again shows them clear and
        // whole-block comparisons stay exact.
        const int first = BlocksFor(n);
        if (n & 31)
            m_blocks[n >> 5] &= (1u << (n & 31)) - 1u;
        for (int b = first; b < BlocksFor(m_size); ++b)
            m_blocks[b] = 0;
    }
    m_size = n;
}

int omi_BlkBitVect::Count() const
{
    int n = 0;
    for (int b = 0; b < BlocksFor(m_size); ++b)
        n += PopCount(m_blocks[b]);
    return n;
}

void omi_BlkBitVect::ClearAll()
{
    if (m_blocks)
        std::memset(m_blocks, 0, sizeof(uint32_t) * static_cast<size_t>(BlocksFor(m_size)));
}

int omi_BlkBitVect::NextSet(int from) const
{
    if (from < 0)
        from = 0;
    for (int i = from; i < m_size;) {
        const uint32_t block = m_blocks[i >> 5] >> (i & 31);
        if (block) {
            int j = i;
            for (uint32_t v = block; !(v & 1u); v >>= 1)
                ++j;
            return j < m_size ? j : -1;
        }
        i = (i | 31) + 1;
    }
    return -1;
}

bool omi_BlkBitVect::operator==(const omi_BlkBitVect& o) const
{
    if (m_size != o.m_size)
        return false;
    const int n = BlocksFor(m_size);
    return n == 0 || std::memcmp(m_blocks, o.m_blocks, sizeof(uint32_t) * static_cast<size_t>(n)) == 0;
}

/// @class omi_BlkBitVect
/// omi_BlkBitVect: a small growable bit vector stored in 32-bit blocks (a value: copies are deep).
///
/// Bits past Size() read as clear. Set(i) past the end grows the vector to i+1 bits; Clear(i)
/// past the end does nothing. Negative indices, and indices past INT_MAX-64, are ignored
/// (Test gives false).
///
/// Thread rule: one vector, one thread at a time; copies are independent. Blocks() points at
/// BlockCount() words, valid until the next change of the vector.
#ifndef OMI_BLKBITVECT_H
#define OMI_BLKBITVECT_H

#include <cstdint>

#include "zul_CoreExport.h"

class ZUL_CORE_API omi_BlkBitVect {
public:
    omi_BlkBitVect();
    explicit omi_BlkBitVect(int size);  ///< size bits, all clear
    omi_BlkBitVect(const omi_BlkBitVect& o);
    omi_BlkBitVect(omi_BlkBitVect&& o) noexcept;
    omi_BlkBitVect& operator=(const omi_BlkBitVect& o);
    omi_BlkBitVect& operator=(omi_BlkBitVect&& o) noexcept;
    ~omi_BlkBitVect();

    void Set(int index);
    void Clear(int index);
    void Assign(int index, bool value) { value ? Set(index) : Clear(index); }
    bool Test(int index) const
    {
        return index >= 0 && index < m_size && ((m_blocks[index >> 5] >> (index & 31)) & 1u) != 0;
    }
    bool operator[](int index) const { return Test(index); }

    int Size() const { return m_size; }
    /// Grows (new bits clear) or shrinks (bits past n dropped) to n bits; n < 0 counts as 0.
    void Resize(int n);
    /// Number of set bits.
    int Count() const;
    void ClearAll();
    /// First set bit at or after `from`, or -1.
    int NextSet(int from = 0) const;

    /// Equal when the sizes and all bits are equal.
    bool operator==(const omi_BlkBitVect& o) const;
    bool operator!=(const omi_BlkBitVect& o) const { return !(*this == o); }

    int BlockCount() const { return (m_size + 31) >> 5; }
    const uint32_t* Blocks() const { return m_blocks; }

private:
    void Reserve(int bits);

    uint32_t* m_blocks;
    int m_size;      ///< bits
    int m_capacity;  ///< blocks allocated
};

#endif

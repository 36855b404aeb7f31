/// @class cow_1DArray
/// Copy-on-write, block-organised array: the storage under cow_1DArrayList and cow_List.
///
/// Elements live in blocks of 2^shift (16) elements. The table of block pointers and the blocks
/// are shared between copies: copying an array costs one increment; a write copies the table
/// (raising each block's count) and then only the one block it touches. Growth never moves
/// elements: only the table is reallocated, with 16 spare slots each time it must grow.
/// Blocks are made lazily, on the first write to one of their elements, with every element
/// value-initialised (zero for numbers); until then reading one of its elements yields a default
/// value that belongs to the calling thread (made at the thread's first such read, one per
/// element type), so reads never change the table.
///
/// Element i lives in block (i + offset) >> shift at (i + offset) - (block << shift).
///
/// Contracts: indices are not range-checked (reading outside the table is undefined).
///
/// Thread rule: the counts of the table and the blocks are plain integers: arrays that share
/// storage (an array and its copies) are used by one thread at a time. Arrays that share nothing
/// may be used on different threads: the default element read from blocks not made yet is the
/// calling thread's own, so copying it (a list's default carries a count) never races.
#ifndef COW_1DARRAY_H
#define COW_1DARRAY_H

#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>

#include "cow/cow_COW.h"
#include "mem/mem_Memory.h"
#include "mem/mem_OutOfMemory.h"
#include "zul_Compiler.h"

/// A block of elements, with the number of arrays sharing it.
template <class T>
struct cow_1DArrayBlock {
    int32_t count;  ///< arrays sharing this block
    T* elements;
};

template <class T>
class cow_1DArray {
public:
    typedef cow_1DArrayBlock<T> Block;
    /// The block size (as a shift: blocks of 16 elements) and the spare table slots added each time the table grows.
    enum { DefaultShift = 4, SpareSlots = 16 };

    cow_1DArray() : m_capacity(0), m_shift(0), m_fullSize(0), m_offset(0), m_counter(NewCounter()), m_table(nullptr) {}

    cow_1DArray(const cow_1DArray& o)
        : m_capacity(o.m_capacity), m_shift(o.m_shift), m_fullSize(o.m_fullSize), m_offset(o.m_offset),
          m_counter(o.m_counter), m_table(o.m_table)
    {
        ++*m_counter;
    }

    cow_1DArray& operator=(const cow_1DArray& o)
    {
        ++*o.m_counter;
        Release();
        m_capacity = o.m_capacity;
        m_shift = o.m_shift;
        m_fullSize = o.m_fullSize;
        m_offset = o.m_offset;
        m_counter = o.m_counter;
        m_table = o.m_table;
        return *this;
    }

    ~cow_1DArray() { Release(); }

    /// Logical size: elements 0 .. Size()-1.
    int32_t Size() const { return m_fullSize - m_offset; }
    int32_t Offset() const { return m_offset; }
    int32_t Capacity() const { return m_capacity; }
    int32_t Shift() const { return m_shift; }
    bool Exclusive() const { return *m_counter == 1; }
    int32_t UseCount() const { return *m_counter; }

    /// Read access by arithmetic on the table; no range check, no copy.
    ///@{
    const T& operator[](int i) const { return Element(i + m_offset); }
    const T& ConstGet(int i) const { return Element(i + m_offset); }
    ///@}

    /// The elements from logical position i to the end of the block that holds it: a pointer to
    /// element i, with n set to how many follow it in memory (i itself included). A block not
    /// made yet is read one default element at a time. No range check.
    const T* ConstRun(int i, int& n) const
    {
        const int32_t full = i + m_offset;
        const int32_t b = full >> m_shift;
        const Block* block = m_table[b];
        if (!block) {
            n = 1;
            return &DefaultElement();
        }
        const int32_t at = full & ((int32_t(1) << m_shift) - 1);
        n = (int32_t(1) << m_shift) - at;
        return block->elements + at;
    }

    /// Write access: writing at or beyond the logical size grows the array to i + 1; otherwise
    /// the array and the block concerned are made private first.
    T& Get(int i)
    {
        if (i < Size()) {
            MakePrivate();
            return PrivateElement(i + m_offset);
        }
        if (T* slot = NextSlot(i))
            return *slot;
        const int32_t oldShift = m_shift;
        const int32_t oldFullSize = m_fullSize;
        Grow(i + 1);
        try {
            return PrivateElement(i + m_offset);
        } catch (...) {
            // The block could not be made: back to the old size (a table made just now goes
            // again; a larger one stays, which changes no element).
            if (oldShift == 0)
                Grow(0);
            else
                m_fullSize = oldFullSize;
            throw;
        }
    }

    /// The common append, for writers that append one element at a time: when i is the logical
    /// size, the array is private and the element's block is made and private (not the first
    /// element of a block), the array grows by one and the element is returned, with no other step
    /// of Grow. Null otherwise: the caller then uses Get(i).
    T* NextSlot(int i)
    {
        const int32_t full = i + m_offset;
        const int32_t at = full & ((int32_t(1) << m_shift) - 1);
        // at == 0: the first element of a block (or an array without blocks) takes the general path.
        if (full != m_fullSize || at == 0)
            return nullptr;
        Block* block = m_table[full >> m_shift];
        if (!block || block->count != 1 || *m_counter != 1)
            return nullptr;
        m_fullSize = full + 1;
        return block->elements + at;
    }

    /// Sets the logical size to n (0 empties the array and releases its blocks).
    void Grow(int n)
    {
        MakePrivate();
        const int32_t oldCapacity = m_capacity;
        int32_t shift = m_shift, fullSize = m_fullSize, offset = m_offset, capacity = m_capacity;
        if (n == 0) {
            capacity = shift = fullSize = offset = 0;
        } else {
            if (fullSize == 0)
                shift = DefaultShift;
            fullSize = offset + n;
            const int32_t needed = BlocksFor(fullSize, shift);
            if (needed > capacity)
                capacity = needed + SpareSlots;
        }
        if (capacity > oldCapacity) {
            Block** table = static_cast<Block**>(mem_Realloc(m_table, sizeof(Block*) * static_cast<size_t>(capacity)));
            if (!table)
                mem_ThrowOutOfMemory(sizeof(Block*) * static_cast<size_t>(capacity));
            for (int32_t s = oldCapacity; s < capacity; ++s)
                table[s] = nullptr;
            m_table = table;
        } else if (capacity < oldCapacity) {
            // Only when emptying. Every slot is released, also those past the logical end.
            for (int32_t s = capacity; s < oldCapacity; ++s)
                DropBlock(m_table[s]);
            mem_Free(m_table);
            m_table = nullptr;
        }
        m_capacity = capacity;
        m_shift = shift;
        m_fullSize = fullSize;
        m_offset = offset;
    }

    /// Front removal for lists: logical element 0 leaves; when its block is left behind, the
    /// block loses one count and its slot is emptied. No element moves.
    void DropFront()
    {
        MakePrivate();
        const int32_t oldBlock = m_offset >> m_shift;
        ++m_offset;
        if ((m_offset >> m_shift) != oldBlock) {
            DropBlock(m_table[oldBlock]);
            m_table[oldBlock] = nullptr;
        }
    }

    /// Front insertion for lists: makes room for a new logical element 0 (value-initialised
    /// when its block is new; the caller stores the value).
    void OpenFront()
    {
        if (m_offset > 0) {
            MakePrivate();
            --m_offset;
            return;
        }
        int32_t inUse = BlocksFor(m_fullSize, m_shift);
        if (m_capacity == 0 || inUse >= m_capacity) {
            // One element past the whole blocks: adds a block and 16 spare slots.
            Grow((inUse << (m_shift ? m_shift : int32_t(DefaultShift))) + 1 - m_offset);
            inUse = BlocksFor(m_fullSize, m_shift);
        } else {
            MakePrivate();
        }
        const int32_t spare = m_capacity - inUse;
        std::memmove(m_table + spare, m_table, sizeof(Block*) * static_cast<size_t>(inUse));
        for (int32_t s = 0; s < spare; ++s)
            m_table[s] = nullptr;
        m_fullSize += spare << m_shift;
        m_offset = (spare << m_shift) - 1;
    }

    void swap(cow_1DArray& o)
    {
        std::swap(m_capacity, o.m_capacity);
        std::swap(m_shift, o.m_shift);
        std::swap(m_fullSize, o.m_fullSize);
        std::swap(m_offset, o.m_offset);
        std::swap(m_counter, o.m_counter);
        std::swap(m_table, o.m_table);
    }

    /// Makes the table private: copies it and raises the count of every block it names.
    void MakePrivate()
    {
        if (*m_counter == 1)
            return;
        int32_t* counter = NewCounter();
        Block** table = nullptr;
        if (m_capacity > 0) {
            table = static_cast<Block**>(mem_Malloc(sizeof(Block*) * static_cast<size_t>(m_capacity)));
            if (!table) {
                mem_Free(counter);
                mem_ThrowOutOfMemory(sizeof(Block*) * static_cast<size_t>(m_capacity));
            }
            std::memcpy(table, m_table, sizeof(Block*) * static_cast<size_t>(m_capacity));
            for (int32_t s = 0; s < m_capacity; ++s)
                if (table[s])
                    ++table[s]->count;
        }
        --*m_counter;
        m_counter = counter;
        m_table = table;
    }

    /// Makes the blocks holding logical positions from..to present and private (the table must be
    /// private). Contents do not change, so a failure part-way leaves the array as it was.
    void MakeRangePrivate(int from, int to)
    {
        if (m_shift == 0)
            return;
        const int32_t last = to < Size() ? to : Size() - 1;
        if (from < 0)
            from = 0;
        if (last < from)
            return;
        for (int32_t b = (from + m_offset) >> m_shift; b <= ((last + m_offset) >> m_shift); ++b)
            PrivateBlock(m_table[b]);
    }

private:
    static int32_t BlocksFor(int32_t fullSize, int32_t shift)
    {
        if (fullSize <= 0)
            return 0;
        return (fullSize + (int32_t(1) << shift) - 1) >> shift;
    }

    static int32_t* NewCounter()
    {
        int32_t* cell = static_cast<int32_t*>(mem_OperatorNewTinyThrow(sizeof(int32_t)));
        *cell = 1;
        return cell;
    }

    Block* NewBlock(const T* source) const
    {
        const int32_t n = int32_t(1) << m_shift;
        Block* block = static_cast<Block*>(mem_OperatorNewTinyThrow(sizeof(Block)));
        T* elements;
        try {
            elements = static_cast<T*>(mem_OperatorNewThrow(sizeof(T) * static_cast<size_t>(n)));
        } catch (...) {
            mem_Free(block);
            throw;
        }
        int32_t made = 0;
        try {
            for (; made < n; ++made) {
                if (source)
                    ::new (elements + made) T(source[made]);
                else
                    ::new (elements + made) T();
            }
        } catch (...) {
            while (made > 0)
                elements[--made].~T();
            mem_Free(elements);
            mem_Free(block);
            throw;
        }
        block->count = 1;
        block->elements = elements;
        return block;
    }

    void DropBlock(Block* block) const
    {
        if (!block || --block->count > 0)
            return;
        const int32_t n = int32_t(1) << m_shift;
        for (int32_t e = 0; e < n; ++e)
            block->elements[e].~T();
        mem_Free(block->elements);
        mem_Free(block);
    }

    /// A block not made yet holds only default values: reading it yields the default element,
    /// so reads never change the table.
    const T& Element(int32_t full) const
    {
        const Block* block = m_table[full >> m_shift];
        if (ZUL_LIKELY(block != nullptr))
            return block->elements[full & ((int32_t(1) << m_shift) - 1)];
        return DefaultElement();
    }

    /// The default element. Copying a plain value touches nothing shared, so one constant serves
    /// every thread; a type whose copy changes a count (a list, a string) gets the calling
    /// thread's own object (see mem_ThreadObject), made at its first read of a block not made
    /// yet and never written, so threads reading arrays of their own never touch the same one.
    /// (The call stays off the paths of plain values: a call inside a loop over made blocks
    /// would make it keep its sums in memory.)
    static const T& DefaultElement()
    {
        if constexpr (std::is_trivially_copyable<T>::value) {
            static const T value = T();
            return value;
        } else {
            return ThreadDefaultElement();
        }
    }
    ZUL_COLD static const T& ThreadDefaultElement()
    {
        return *static_cast<const T*>(mem_ThreadObject(&s_defaultTag, &MakeDefault, &DestroyDefault));
    }
    static void* MakeDefault() { return cow_New<T>(); }
    static void DestroyDefault(void* value) { cow_Destroy(static_cast<T*>(value)); }
    static char s_defaultTag;  ///< names this instance's default element; never written

    /// Makes a table slot hold a block of its own: a new one when none is made yet, a copy when
    /// the block is shared with another table. Requires a private table.
    Block* PrivateBlock(Block*& slot)
    {
        if (!slot) {
            slot = NewBlock(nullptr);
        } else if (slot->count > 1) {
            Block* copy = NewBlock(slot->elements);
            --slot->count;
            slot = copy;
        }
        return slot;
    }

    T& PrivateElement(int32_t full)
    {
        const int32_t b = full >> m_shift;
        return PrivateBlock(m_table[b])->elements[full - (b << m_shift)];
    }

    void Release()
    {
        if (!m_counter || --*m_counter > 0)
            return;
        for (int32_t s = 0; s < m_capacity; ++s)
            DropBlock(m_table[s]);
        mem_Free(m_table);
        mem_Free(m_counter);
        m_table = nullptr;
        m_counter = nullptr;
    }

    int32_t m_capacity;
    int32_t m_shift;
    int32_t m_fullSize;
    int32_t m_offset;
    int32_t* m_counter;
    Block** m_table;
};

template <class T>
char cow_1DArray<T>::s_defaultTag = 0;

#endif

/// @class cow_ArraySeq
/// The part shared by cow_1DArrayList and cow_List: a count of elements in use in front of a
/// copy-on-write block array (members in this order), with element access and the machinery
/// that makes multi-step writes all-or-nothing.
///
/// Contracts: no index is checked by operator[], ConstGet and Get (ConstRun checks its own); the
/// derived lists name theirs.
///
/// Thread rule: the storage's: sequences that share storage are used by one thread at a time.
#ifndef COW_ARRAYSEQ_H
#define COW_ARRAYSEQ_H

#include <cstdint>
#include <new>

#include "cow/cow_1DArray.h"
#include "mem/mem_Memory.h"
#include "mem/mem_OutOfMemory.h"

template <class T>
class cow_ArraySeq {
public:
    int Count() const { return m_count; }
    int Length() const { return m_count; }
    bool IsEmpty() const { return m_count <= 0; }

    /// No range check, no copy.
    ///@{
    const T& operator[](int i) const { return m_storage[i]; }
    const T& ConstGet(int i) const { return m_storage.ConstGet(i); }
    ///@}
    /// Write access: makes the storage (and the block) private; writing past the storage's end
    /// grows it. The count is not changed.
    T& Get(int i) { return m_storage.Get(i); }
    /// Grows (or with 0 empties) the storage; the count is not changed.
    void Grow(int n) { m_storage.Grow(n); }

    const cow_1DArray<T>& Storage() const { return m_storage; }

    /// Reading block by block: a pointer to element i and, in n, how many elements from i on lie
    /// together in memory (to the end of i's block, at most up to Count()); n is 0 when i is not
    /// below Count(). A loop over runs costs what a loop over a plain array costs:
    /// @code
    ///   for (int i = 0, n = 0; i < list.Count(); i += n)
    ///       for (const T *p = list.ConstRun(i, n), *e = p + n; p != e; ++p) ...
    /// @endcode
    const T* ConstRun(int i, int& n) const
    {
        if (i < 0 || i >= m_count) {
            n = 0;
            return nullptr;
        }
        const T* run = m_storage.ConstRun(i, n);
        if (n > m_count - i)
            n = m_count - i;
        return run;
    }

    /// A plain copy of the elements in use, from mem_Malloc; the caller frees it with mem_Free.
    T* GetCArray(int& n) const
    {
        const int count = m_count > 0 ? m_count : 0;
        T* out = static_cast<T*>(mem_Malloc(sizeof(T) * static_cast<size_t>(count)));
        if (!out && count > 0)
            mem_ThrowOutOfMemory(sizeof(T) * static_cast<size_t>(count));
        int made = 0;
        try {
            for (; made < count; ++made)
                ::new (out + made) T(m_storage[made]);
        } catch (...) {
            while (made > 0)
                out[--made].~T();
            mem_Free(out);
            throw;
        }
        n = count;
        return out;
    }

protected:
    cow_ArraySeq() : m_count(0) {}

    /// Index of the first element equal to value, or -1.
    int IndexOf(const T& value) const
    {
        for (int i = 0; i < m_count; ++i)
            if (m_storage[i] == value)
                return i;
        return -1;
    }

    /// Same count and equal elements in order; elements at one address (shared storage) are
    /// equal without a comparison.
    bool SameElements(const cow_ArraySeq& other) const
    {
        if (m_count != other.m_count)
            return false;
        for (int i = 0; i < m_count; ++i) {
            const T& a = m_storage[i];
            const T& b = other.m_storage[i];
            if (&a != &b && !(a == b))
                return false;
        }
        return true;
    }

    void AppendOne(const T& value)
    {
        T* slot = m_storage.NextSlot(m_count);
        if (!slot)
            slot = &m_storage.Get(m_count);  // may throw: count unchanged
        *slot = value;
        ++m_count;
    }

    /// Puts value at i, moving elements i .. count-1 one place up.
    void InsertAt(int i, const T& value)
    {
        const T copy(value);  // value may live in this sequence
        Mutate(i, m_count, [i, &copy](cow_ArraySeq& s) {
            if (i > s.m_count) {
                s.m_storage.Get(i) = copy;
            } else {
                s.m_storage.Get(s.m_count);  // grow first
                for (int j = s.m_count - 1; j >= i; --j)
                    s.m_storage.Get(j + 1) = s.m_storage[j];
                s.m_storage.Get(i) = copy;
            }
            ++s.m_count;
        });
    }

    /// Count - 1, later elements one place down, the vacated last place reset to a default
    /// value. With no element left to remove only the count moves (it may go negative): storage
    /// outside the array is never written.
    void RemoveAt(int i)
    {
        if (m_count <= 0) {
            --m_count;
            return;
        }
        Mutate(i, m_count - 1, [i](cow_ArraySeq& s) {
            const int last = s.m_count - 1;
            for (int j = i + 1; j <= last; ++j)
                s.m_storage.Get(j - 1) = s.m_storage[j];
            s.m_storage.Get(last) = T();
            s.m_count = last;
        });
    }

    void AppendAll(const cow_ArraySeq& other, bool growFirst)
    {
        const cow_ArraySeq source(other);  // other may be this sequence
        Mutate(m_count, m_count, [&source, growFirst](cow_ArraySeq& s) {
            if (growFirst && source.m_count > s.m_count)
                s.m_storage.Grow(source.m_count);
            for (int i = 0; i < source.m_count; ++i)
                s.AppendOne(source.m_storage[i]);
        });
    }

    void Reset()
    {
        cow_1DArray<T> empty;
        m_storage.swap(empty);
        m_count = 0;
    }

    /// Runs a multi-step write so that a failure leaves the sequence as it was: an exclusive one
    /// is changed in place once the blocks of positions from..to are present and private (moving
    /// elements inside private blocks allocates nothing); a shared one is changed on a private
    /// copy that replaces it only when every step has succeeded.
    template <class F>
    void Mutate(int from, int to, F f)
    {
        if (m_storage.Exclusive()) {
            m_storage.MakeRangePrivate(from, to);
            f(*this);
            return;
        }
        cow_ArraySeq work(*this);
        work.m_storage.MakePrivate();
        f(work);
        m_count = work.m_count;
        m_storage.swap(work.m_storage);
    }

    int32_t m_count;
    cow_1DArray<T> m_storage;
};

/// Walks positions 0..count-1 of a sequence as it was when the iterator was made (it holds a
/// copy, which shares the storage, so later writes to the source do not show). It keeps the run of
/// the current block, so that a step is an increment.
template <class Seq, class T>
class cow_ArraySeqIter {
public:
    explicit cow_ArraySeqIter(const Seq& seq) : m_seq(seq), m_pos(0) { Load(); }

    bool NotDone() const { return m_pos < m_seq.Count(); }
    void Next()
    {
        ++m_pos;
        if (--m_runLeft > 0)
            ++m_run;
        else
            Load();
    }
    cow_ArraySeqIter& operator++()
    {
        Next();
        return *this;
    }
    const T& Current() const { return *m_run; }
    const T& operator*() const { return *m_run; }
    int Position() const { return m_pos; }
    void Reset()
    {
        m_pos = 0;
        Load();
    }

private:
    void Load() { m_run = m_seq.ConstRun(m_pos, m_runLeft); }

    Seq m_seq;
    int m_pos;
    int m_runLeft;
    const T* m_run;
};

#endif

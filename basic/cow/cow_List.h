/// @class cow_List
/// cow_List<T>: the library's double-ended sequence over the same storage as cow_1DArrayList.
///
/// Front operations are cheap: RemoveFirst advances the storage's offset (no element moves) and
/// Prepend uses the room in front of the offset, making a whole table's worth of spare front room
/// at once when none is left. Every mutator returns the list so that calls chain.
///
/// Contracts: no index is checked; RemoveFirst, RemoveLast and RemoveIndex on an empty list drive
/// the count below zero (storage outside the array is never written). Position answers -1 for a
/// missing element (cow_1DArrayList::FindFirst answers the count). A failed write (out of
/// memory) leaves the list and every list sharing its storage unchanged.
///
/// Sort orders with operator< of the element type (strings: byte-wise, unsigned), lists of
/// lists lexicographically.
///
/// Instances used by the library: int, unsigned int, bool, float, double, cow_String, atr_String
/// and cow_1DArrayList<int>.
///
/// Thread rule: the storage's (cow_1DArray.h): lists that share storage (a list, its copies and the
/// snapshots their iterators hold) are used by one thread at a time; lists that share nothing may
/// be used on different threads (the default element of blocks not made yet is per thread).
#ifndef COW_LIST_H
#define COW_LIST_H

#include <cstdlib>
#include <type_traits>

#include "cow/cow_1DArrayList.h"
#include "cow/cow_ArraySeq.h"
#include "cow/cow_String.h"

/// Three-way comparison used by cow_List::Sort: -1, 0 or 1.
template <class T>
int cow_SortCompare(const T& a, const T& b)
{
    return a < b ? -1 : (b < a ? 1 : 0);
}

template <class T>
int cow_SortCompare(const cow_1DArrayList<T>& a, const cow_1DArrayList<T>& b)
{
    const int n = a.Count() < b.Count() ? a.Count() : b.Count();
    for (int i = 0; i < n; ++i)
        if (int c = cow_SortCompare(a[i], b[i]))
            return c;
    return a.Count() < b.Count() ? -1 : (a.Count() > b.Count() ? 1 : 0);
}

template <class T>
class cow_List : public cow_ArraySeq<T> {
public:
    cow_List() {}

    cow_List& Append(const T& value)
    {
        this->AppendOne(value);
        return *this;
    }

    cow_List& Append(const cow_List& other)
    {
        this->AppendAll(other, false);
        return *this;
    }

    cow_List& Prepend(const T& value)
    {
        const T copy(value);
        this->Mutate(0, 0, [&copy](cow_ArraySeq<T>& s) { static_cast<cow_List&>(s).PrependInPlace(copy); });
        return *this;
    }

    cow_List& InsertAfter(int i, const T& value)
    {
        if (i == this->m_count)
            return Append(value);
        this->InsertAt(i + 1, value);
        return *this;
    }

    cow_List& RemoveFirst()
    {
        if (this->m_count <= 0) {
            --this->m_count;
            return *this;
        }
        this->Mutate(0, 0, [](cow_ArraySeq<T>& s) {
            cow_List& l = static_cast<cow_List&>(s);
            l.m_storage.Get(0) = T();
            l.m_storage.DropFront();
            --l.m_count;
        });
        return *this;
    }

    cow_List& RemoveLast()
    {
        this->RemoveAt(this->m_count - 1);
        return *this;
    }

    cow_List& RemoveIndex(int i)
    {
        this->RemoveAt(i);
        return *this;
    }

    cow_List& Remove(const T& value)
    {
        const int i = this->IndexOf(value);
        if (i >= 0)
            this->RemoveAt(i);
        return *this;
    }

    /// Releases the storage.
    cow_List& Clear()
    {
        this->Reset();
        return *this;
    }

    int Position(const T& value) const { return this->IndexOf(value); }
    bool IsMember(const T& value) const { return Position(value) >= 0; }

    cow_List& AppendUnlessMember(const T& value)
    {
        if (!IsMember(value))
            Append(value);
        return *this;
    }

    bool IsEqual(const cow_List& other) const { return this->SameElements(other); }
    bool operator==(const cow_List& other) const { return IsEqual(other); }
    bool operator!=(const cow_List& other) const { return !IsEqual(other); }

    /// Ascending, through qsort. Always leaves the list with private storage and offset 0.
    cow_List& Sort()
    {
        if (this->m_count <= 0)
            return *this;
        int n = 0;
        T* sorted = this->GetCArray(n);
        try {
            if (std::is_trivially_copyable<T>::value) {
                std::qsort(sorted, static_cast<size_t>(n), sizeof(T), &SortCmp);
                Rebuild(sorted, n, nullptr);
            } else {
                // qsort moves bytes: sort addresses instead of objects that may not allow it.
                const T** order = static_cast<const T**>(mem_Malloc(sizeof(T*) * static_cast<size_t>(n)));
                if (!order)
                    mem_ThrowOutOfMemory(sizeof(T*) * static_cast<size_t>(n));
                for (int i = 0; i < n; ++i)
                    order[i] = sorted + i;
                std::qsort(order, static_cast<size_t>(n), sizeof(T*), &SortCmpIndirect);
                try {
                    Rebuild(sorted, n, order);
                } catch (...) {
                    mem_Free(order);
                    throw;
                }
                mem_Free(order);
            }
        } catch (...) {
            FreeCArray(sorted, n);
            throw;
        }
        FreeCArray(sorted, n);
        return *this;
    }

    /// This list's elements, in order and with repetitions, that are not members of other.
    cow_List operator-(const cow_List& other) const
    {
        cow_List out;
        for (int i = 0; i < this->m_count; ++i)
            if (!other.IsMember(this->m_storage[i]))
                out.Append(this->m_storage[i]);
        return out;
    }

private:
    static int SortCmp(const void* a, const void* b)
    {
        return cow_SortCompare(*static_cast<const T*>(a), *static_cast<const T*>(b));
    }

    static int SortCmpIndirect(const void* a, const void* b)
    {
        return cow_SortCompare(**static_cast<const T* const*>(a), **static_cast<const T* const*>(b));
    }

    static void FreeCArray(T* items, int n)
    {
        for (int i = 0; i < n; ++i)
            items[i].~T();
        mem_Free(items);
    }

    /// Replaces the storage by a new array holding the elements in the given order.
    void Rebuild(const T* items, int n, const T* const* order)
    {
        cow_List fresh;
        for (int i = 0; i < n; ++i)
            fresh.Append(order ? *order[i] : items[i]);
        this->m_storage.swap(fresh.m_storage);
        this->m_count = n;
    }

    void PrependInPlace(const T& value)
    {
        this->m_storage.OpenFront();
        try {
            this->m_storage.Get(0) = value;  // may have to make the front block
        } catch (...) {
            this->m_storage.DropFront();  // the list's elements are where they were
            throw;
        }
        ++this->m_count;
    }
};

/// Walks a list from index 0 to count - 1, as it was when the iterator was made.
template <class T>
class cow_ListIter : public cow_ArraySeqIter<cow_List<T>, T> {
public:
    explicit cow_ListIter(const cow_List<T>& list) : cow_ArraySeqIter<cow_List<T>, T>(list) {}
};

/// The items an iterator of a container visits (First, NotDone, Next), picked from it, as a list.
template <class T, class Iter, class Pick>
cow_List<T> cow_CollectFrom(Iter& it, Pick pick)
{
    cow_List<T> out;
    for (it.First(); it.NotDone(); it.Next())
        out.Append(pick(it));
    return out;
}

/// The greatest length among the strings of a list, read from each representation; 0 for an
/// empty list or strings without representation.
inline unsigned int GetLengthLongestString(const cow_List<cow_String>& list)
{
    unsigned int longest = 0;
    for (int i = 0; i < list.Count(); ++i) {
        const unsigned int length = static_cast<unsigned int>(list[i].Length());  // 0 without representation
        if (length > longest)
            longest = length;
    }
    return longest;
}

#endif

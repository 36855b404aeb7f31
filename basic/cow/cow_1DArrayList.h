/// @class cow_1DArrayList
/// cow_1DArrayList<T>: the library's growable list, a count in front of a cow_1DArray<T>.
///
/// Copying a list shares its storage (one increment); the first write copies the block table
/// and the one block it touches. Appending never calls Grow: it writes one place past the end
/// and the storage grows by itself.
///
/// Contracts (kept for speed; callers keep indices in range):
/// - No index is checked. Remove and Pop on an empty list still decrement the count, which can
///   go negative; storage is then left alone (nothing is written outside it).
/// - Insert with an index beyond count stores the value there and increments count, leaving
///   default elements between.
/// - FindFirst answers count, not -1, when nothing is found (cow_List::Position answers -1).
/// - Elements compare with the element type's ==.
///
/// A failed write (out of memory) leaves the list and every list sharing its storage unchanged.
///
/// Instances used by the library: int, unsigned int, float, double, cow_String and lists of
/// int, float and double lists; the uti_Coord3D instance comes with the coordinate classes.
///
/// Thread rule: the storage's (cow_1DArray.h): lists that share storage (a list, its copies and the
/// snapshots their iterators hold) are used by one thread at a time; lists that share nothing may
/// be used on different threads (the default element of blocks not made yet is per thread).
#ifndef COW_1DARRAYLIST_H
#define COW_1DARRAYLIST_H

#include "cow/cow_ArraySeq.h"

template <class T>
class cow_1DArrayList : public cow_ArraySeq<T> {
    using Base = cow_ArraySeq<T>;

public:
    cow_1DArrayList() {}

    void Append(const T& value) { this->AppendOne(value); }

    /// Grows the storage to the other list's count first (when it is longer), then appends.
    void Append(const cow_1DArrayList& other) { this->AppendAll(other, true); }

    bool Insert(int i, const T& value)
    {
        if (i == this->m_count)
            Append(value);
        else
            this->InsertAt(i, value);
        return true;
    }

    bool Remove(int i)
    {
        this->RemoveAt(i);
        return true;
    }

    T Pop()
    {
        T last = this->m_count > 0 ? this->m_storage[this->m_count - 1] : T();
        Remove(this->m_count - 1);
        return last;
    }

    void ClearAll() { this->Reset(); }

    int FindFirst(const T& value) const
    {
        const int i = this->IndexOf(value);
        return i < 0 ? this->m_count : i;
    }

    bool IsMember(const T& value) const { return FindFirst(value) < this->m_count; }

    void RemoveMember(const T& value)
    {
        const int i = this->IndexOf(value);
        if (i >= 0)
            Remove(i);
    }

    void AppendUnlessMember(const T& value)
    {
        if (!IsMember(value))
            Append(value);
    }

    bool IsEqual(const cow_1DArrayList& other) const { return this->SameElements(other); }
    bool operator==(const cow_1DArrayList& other) const { return IsEqual(other); }
    bool operator!=(const cow_1DArrayList& other) const { return !IsEqual(other); }

    /// Elements from `from` up to but excluding min(to, count); empty when from is not below it.
    cow_1DArrayList Slice(int from, int to) const
    {
        cow_1DArrayList out;
        Slice(from, to, out);
        return out;
    }

    void Slice(int from, int to, cow_1DArrayList& out) const
    {
        cow_1DArrayList result;
        const int end = to < this->m_count ? to : this->m_count;
        for (int i = from < 0 ? 0 : from; i < end; ++i)
            result.Append(this->m_storage[i]);
        out = result;
    }
};

/// Walks a list from index 0 to count - 1, as it was when the iterator was made.
template <class T>
class cow_1DArrayListIter : public cow_ArraySeqIter<cow_1DArrayList<T>, T> {
public:
    explicit cow_1DArrayListIter(const cow_1DArrayList<T>& list) : cow_ArraySeqIter<cow_1DArrayList<T>, T>(list) {}
};

#endif

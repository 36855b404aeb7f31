/// @class uti_CoordCont3D
/// uti_CoordCont3D: a container of three-dimensional points with two storages.
///
/// Either a flat array of floats (x, y, z of point 0, then point 1, ...) or a list of
/// uti_Coord3D. The flat array is the storage in use when it is non-null and at least one float
/// long; otherwise the list is. SetCArray adopts a caller's array without copying it: the caller
/// keeps it alive, and writes through the container (SetCoord, appends that fit) land in it.
/// An array the container made itself (Grow, copying a container) is owned and freed by it.
///
/// Appending beyond the flat array's length, removing points, and growing a non-empty container
/// to 100 points or more first move the points from the flat array into the list; the adopted
/// array is then left to its owner untouched.
///
/// Two-dimensional input gets z = 0. Indices are checked: accessors answer false for an index
/// outside 0 .. Count()-1, operator[] raises uti_CoordException. A failed write (out of memory)
/// leaves the container as it was.
///
/// Copies are values: copying a container that uses a flat array copies the floats into an
/// array the copy owns.
///
/// Thread rule: one container, one thread at a time; containers that share a list (copies of one
/// another) count as one. An adopted array is read and written in place: its owner keeps off it
/// while the container uses it.
#ifndef UTI_COORDCONT3D_H
#define UTI_COORDCONT3D_H

#include <cstdint>
#include <type_traits>

#include "cow/cow_1DArrayList.h"
#include "nex/nex_Exception.h"
#include "uti/uti_Coord3D.h"
#include "zul_BasicExport.h"

/// Bad arguments given to a coordinate container.
NEX_TEXT_EXCEPTION(uti_CoordException, nex_TextException, 0x20B01u);

class ZUL_BASIC_API uti_CoordCont3D : public mem_AllocationOperators {
public:
    /// At this many points or more a growing container keeps its points in the list.
    enum { ListThreshold = 100 };

    uti_CoordCont3D();
    /// SetCArray(array, count, dimension).
    uti_CoordCont3D(float* array, int count, int dimension);
    /// n two-dimensional points, copied with z = 0.
    uti_CoordCont3D(const float (*points)[2], int n);
    uti_CoordCont3D(const uti_CoordCont3D& other);
    uti_CoordCont3D& operator=(const uti_CoordCont3D& other);
    virtual ~uti_CoordCont3D();

    /// Persistence: the number of points, then x, y, z of each; read back into the list storage.
    ///@{
    static unsigned TypeId() { return 0x20C02u; }
    explicit uti_CoordCont3D(const cls_ReadVisitor& reader);
    virtual void DBWrite(const cls_WriteVisitor& writer) const;
    ///@}

    /// ClearAll, then: any dimension other than 2 adopts `array` (count floats, count / 3
    /// points, a remainder ignored); dimension 2 copies count / 2 pairs as points with z = 0.
    /// A negative count, or a null array with a positive count, raises uti_CoordException and
    /// changes nothing.
    void SetCArray(float* array, int count, int dimension);
    /// The flat array in use, or null when the points are in the list.
    const float* GetCArray() const { return UsesArray() ? m_array : nullptr; }
    /// Floats in the flat array (0 when the list is in use).
    int GetCArrayLength() const { return UsesArray() ? m_arrayLength : 0; }
    bool UsesArray() const { return m_array != nullptr && m_arrayLength >= 1; }

    int Count() const { return m_count; }

    bool GetCoord(int i, float& x, float& y, float& z) const;
    bool GetCoord(int i, float& x, float& y) const;
    /// Raises uti_CoordException when i is not a valid index.
    uti_Coord3D operator[](int i) const;

    bool SetCoord(int i, float x, float y, float z);
    bool SetCoord(int i, float x, float y);
    bool SetCoord(int i, const uti_Coord3D& c);
    bool SetCoord(int i, const float (&xyz)[3]);
    bool SetCoord(int i, const float (&xy)[2]);

    void Append(float x, float y, float z);
    void Append(float x, float y);
    /// count floats of `dimension` coordinates each (2 gives z = 0, anything else is taken as 3).
    /// The array forms are templates on the float type so that Append(0, 0, 0) and Append(0, 0)
    /// mean coordinates and never a null array.
    ///@{
    template <class F>
    void Append(F* array, int count, int dimension)
    {
        static_assert(std::is_same<typename std::remove_const<F>::type, float>::value, "float array expected");
        AppendFlat(array, count, dimension);
    }
    template <class F>
    void Append(F (*points)[3], int n)
    {
        static_assert(std::is_same<typename std::remove_const<F>::type, float>::value, "float points expected");
        AppendFlat(points ? &points[0][0] : nullptr, CountOf(n, 3), 3);
    }
    template <class F>
    void Append(F (*points)[2], int n)
    {
        static_assert(std::is_same<typename std::remove_const<F>::type, float>::value, "float points expected");
        AppendFlat(points ? &points[0][0] : nullptr, CountOf(n, 2), 2);
    }
    ///@}
    void Append(const uti_Coord3D& c);
    void Append(const cow_1DArrayList<uti_Coord3D>& points);
    void Append(const uti_CoordCont3D& other);

    /// Removes point i; false (nothing removed) when i is not a valid index.
    bool Remove(int i);
    /// Every index must be a valid index (otherwise false and nothing removed). Then removes,
    /// one after the other, the list positions 0, 1, ..., n-1 (the loop position, not the
    /// given index; each removal shifts the later points down), skipping a position past the
    /// end, and answers true.
    ///@{
    bool Remove(const int* indices, int n);
    bool Remove(const cow_1DArrayList<int>& indices);
    ///@}

    /// n not above Count(): Count() becomes n. Otherwise grows to n points, new ones at the
    /// origin: in the list for a non-empty list container or when n >= ListThreshold, else in
    /// a flat array of 3n floats that the container owns. Negative n answers false.
    bool Grow(int n);
    void ClearAll();

    /// Both indices valid and the squared distance strictly below |tolerance * tolerance|.
    bool AreCoordsEqual(int i, int j, float tolerance) const;

    bool operator==(const uti_CoordCont3D& other) const;
    bool operator!=(const uti_CoordCont3D& other) const { return !(*this == other); }

private:
    void AppendFlat(const float* array, int count, int dimension);
    /// n points of `dimension` floats as a float count; raises uti_CoordException for a bad n.
    static int CountOf(int n, int dimension);
    bool Valid(int i) const { return i >= 0 && i < m_count; }
    uti_Coord3D At(int i) const;
    void Put(int i, float x, float y, float z);
    /// The points as a list (a copy of the flat array's points, or the list itself).
    cow_1DArrayList<uti_Coord3D> PointsAsList() const;
    /// Replaces the storage by `list` holding `count` points; frees an owned array.
    void TakeList(cow_1DArrayList<uti_Coord3D>& list, int count);
    void DropArray();
    void Changed() { m_cachedPosition = INT32_MAX; }
    /// Appends n points, point k read by get(k, x, y, z), all or nothing.
    template <class Get>
    void AppendPoints(int n, Get get);
    bool RemovePositions(int n);
    static bool MixedEqual(const uti_CoordCont3D& list, const uti_CoordCont3D& array);

    int32_t m_count;
    uti_Coord3D m_scratch;
    int32_t m_cachedPosition;
    float* m_array;
    int32_t m_arrayLength;
    cow_1DArrayList<uti_Coord3D> m_list;
    bool m_ownsArray;
};

#endif

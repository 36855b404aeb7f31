#include "uti/uti_CoordCont3D.h"

#include <cmath>
#include <cstring>

#include "atr/atr_translate.h"
#include "mem/mem_Memory.h"
#include "mem/mem_OutOfMemory.h"
#include "cls/cls_Visitor.h"
#include "uti/impl/uti_PersistentFields.h"

namespace {

atr_String BadArgumentText(const char* what, int value)
{
    return atr_translate("Coordinate container: %1$s (%2$s)").Arg(what).Arg(atr_String(value)).Result();
}

// A zero-filled array of n floats from the memory layer.
float* NewFloats(int n)
{
    const size_t bytes = sizeof(float) * static_cast<size_t>(n > 0 ? n : 1);
    float* p = static_cast<float*>(mem_Malloc(bytes));
    if (!p)
        mem_ThrowOutOfMemory(bytes);
    std::memset(p, 0, bytes);
    return p;
}

}  // namespace

uti_CoordCont3D::uti_CoordCont3D()
    : m_count(0), m_cachedPosition(INT32_MAX), m_array(nullptr), m_arrayLength(0), m_ownsArray(false)
{
}

uti_CoordCont3D::uti_CoordCont3D(float* array, int count, int dimension) : uti_CoordCont3D()
{
    SetCArray(array, count, dimension);
}

uti_CoordCont3D::uti_CoordCont3D(const float (*points)[2], int n) : uti_CoordCont3D()
{
    Append(points, n);
}

uti_CoordCont3D::uti_CoordCont3D(const uti_CoordCont3D& other)
    : m_count(other.m_count), m_scratch(other.m_scratch), m_cachedPosition(INT32_MAX), m_array(nullptr),
      m_arrayLength(0), m_list(other.m_list), m_ownsArray(false)
{
    if (other.UsesArray()) {
        m_array = NewFloats(other.m_arrayLength);
        std::memcpy(m_array, other.m_array, sizeof(float) * static_cast<size_t>(other.m_arrayLength));
        m_arrayLength = other.m_arrayLength;
        m_ownsArray = true;
    }
}

uti_CoordCont3D& uti_CoordCont3D::operator=(const uti_CoordCont3D& other)
{
    if (this != &other) {
        uti_CoordCont3D copy(other);
        DropArray();
        m_count = copy.m_count;
        m_scratch = copy.m_scratch;
        m_list = copy.m_list;
        m_array = copy.m_array;
        m_arrayLength = copy.m_arrayLength;
        m_ownsArray = copy.m_ownsArray;
        copy.m_array = nullptr;
        copy.m_arrayLength = 0;
        copy.m_ownsArray = false;
        Changed();
    }
    return *this;
}

uti_CoordCont3D::~uti_CoordCont3D()
{
    DropArray();
}

void uti_CoordCont3D::DropArray()
{
    if (m_ownsArray)
        mem_Free(m_array);
    m_array = nullptr;
    m_arrayLength = 0;
    m_ownsArray = false;
}

void uti_CoordCont3D::SetCArray(float* array, int count, int dimension)
{
    if (count < 0)
        NEX_RAISE(uti_CoordException, BadArgumentText("negative float count", count));
    if (!array && count > 0)
        NEX_RAISE(uti_CoordException, BadArgumentText("null array", count));
    if (dimension == 2) {
        cow_1DArrayList<uti_Coord3D> points;
        const int n = count / 2;
        for (int k = 0; k < n; ++k)
            points.Append(uti_Coord3D(array[2 * k], array[2 * k + 1], 0.0f));
        TakeList(points, n);
        return;
    }
    ClearAll();
    if (count >= 1) {
        m_array = array;
        m_arrayLength = count;
        m_count = count / 3;
    }
}

void uti_CoordCont3D::ClearAll()
{
    m_list.ClearAll();  // may throw before anything changed
    DropArray();
    m_count = 0;
    Changed();
}

void uti_CoordCont3D::TakeList(cow_1DArrayList<uti_Coord3D>& list, int count)
{
    DropArray();
    m_list = list;
    m_count = count;
    Changed();
}

cow_1DArrayList<uti_Coord3D> uti_CoordCont3D::PointsAsList() const
{
    if (!UsesArray())
        return m_list;
    cow_1DArrayList<uti_Coord3D> points;
    for (int k = 0; k < m_count; ++k)
        points.Append(uti_Coord3D(m_array[3 * k], m_array[3 * k + 1], m_array[3 * k + 2]));
    return points;
}

uti_Coord3D uti_CoordCont3D::At(int i) const
{
    if (UsesArray())
        return uti_Coord3D(m_array[3 * i], m_array[3 * i + 1], m_array[3 * i + 2]);
    return m_list[i];
}

void uti_CoordCont3D::Put(int i, float x, float y, float z)
{
    if (UsesArray()) {
        m_array[3 * i] = x;
        m_array[3 * i + 1] = y;
        m_array[3 * i + 2] = z;
    } else {
        m_list.Get(i).Set(x, y, z);  // may throw (detaching shared storage) before any change
    }
}

bool uti_CoordCont3D::GetCoord(int i, float& x, float& y, float& z) const
{
    if (!Valid(i))
        return false;
    At(i).Get(x, y, z);
    return true;
}

bool uti_CoordCont3D::GetCoord(int i, float& x, float& y) const
{
    float z;
    return GetCoord(i, x, y, z);
}

uti_Coord3D uti_CoordCont3D::operator[](int i) const
{
    if (!Valid(i))
        NEX_RAISE(uti_CoordException, BadArgumentText("index out of range", i));
    return At(i);
}

bool uti_CoordCont3D::SetCoord(int i, float x, float y, float z)
{
    if (!Valid(i))
        return false;
    Put(i, x, y, z);
    return true;
}

bool uti_CoordCont3D::SetCoord(int i, float x, float y)
{
    return SetCoord(i, x, y, 0.0f);
}

bool uti_CoordCont3D::SetCoord(int i, const uti_Coord3D& c)
{
    return SetCoord(i, c.X(), c.Y(), c.Z());
}

bool uti_CoordCont3D::SetCoord(int i, const float (&xyz)[3])
{
    return SetCoord(i, xyz[0], xyz[1], xyz[2]);
}

bool uti_CoordCont3D::SetCoord(int i, const float (&xy)[2])
{
    return SetCoord(i, xy[0], xy[1], 0.0f);
}

template <class Get>
void uti_CoordCont3D::AppendPoints(int n, Get get)
{
    if (n <= 0)
        return;
    float x, y, z;
    if (UsesArray()) {
        if (int64_t(m_count + int64_t(n)) * 3 <= m_arrayLength) {
            for (int k = 0; k < n; ++k) {
                get(k, x, y, z);
                Put(m_count + k, x, y, z);
            }
            m_count += n;
            Changed();
            return;
        }
        // Beyond the array: the points move to a list, which replaces the array only when
        // every point is in.
        cow_1DArrayList<uti_Coord3D> points = PointsAsList();
        for (int k = 0; k < n; ++k) {
            get(k, x, y, z);
            m_scratch.Set(x, y, z);
            points.Append(m_scratch);
        }
        TakeList(points, m_count + n);
        return;
    }
    // In place; a failure takes the points appended so far off again (removing from the end of
    // storage that is already private allocates nothing).
    const int before = m_list.Count();
    try {
        for (int k = 0; k < n; ++k) {
            get(k, x, y, z);
            m_scratch.Set(x, y, z);
            m_list.Append(m_scratch);
        }
    } catch (...) {
        while (m_list.Count() > before)
            m_list.Remove(m_list.Count() - 1);
        throw;
    }
    m_count = m_list.Count();
    Changed();
}

void uti_CoordCont3D::Append(float x, float y, float z)
{
    AppendPoints(1, [x, y, z](int, float& px, float& py, float& pz) {
        px = x;
        py = y;
        pz = z;
    });
}

void uti_CoordCont3D::Append(float x, float y)
{
    Append(x, y, 0.0f);
}

void uti_CoordCont3D::AppendFlat(const float* array, int count, int dimension)
{
    if (count < 0)
        NEX_RAISE(uti_CoordException, BadArgumentText("negative float count", count));
    if (!array && count > 0)
        NEX_RAISE(uti_CoordException, BadArgumentText("null array", count));
    if (dimension == 2) {
        AppendPoints(count / 2, [array](int k, float& x, float& y, float& z) {
            x = array[2 * k];
            y = array[2 * k + 1];
            z = 0.0f;
        });
    } else {
        AppendPoints(count / 3, [array](int k, float& x, float& y, float& z) {
            x = array[3 * k];
            y = array[3 * k + 1];
            z = array[3 * k + 2];
        });
    }
}

int uti_CoordCont3D::CountOf(int n, int dimension)
{
    if (n < 0 || n > INT32_MAX / dimension)
        NEX_RAISE(uti_CoordException, BadArgumentText("bad point count", n));
    return n * dimension;
}

void uti_CoordCont3D::Append(const uti_Coord3D& c)
{
    Append(c.X(), c.Y(), c.Z());
}

void uti_CoordCont3D::Append(const cow_1DArrayList<uti_Coord3D>& points)
{
    const cow_1DArrayList<uti_Coord3D> source(points);  // `points` may be this container's list
    AppendPoints(source.Count(), [&source](int k, float& x, float& y, float& z) { source[k].Get(x, y, z); });
}

void uti_CoordCont3D::Append(const uti_CoordCont3D& other)
{
    const uti_CoordCont3D source(other);  // `other` may be this container
    AppendPoints(source.m_count, [&source](int k, float& x, float& y, float& z) { source.At(k).Get(x, y, z); });
}

bool uti_CoordCont3D::Remove(int i)
{
    if (!Valid(i))
        return false;
    cow_1DArrayList<uti_Coord3D> points = PointsAsList();
    points.Remove(i);
    TakeList(points, m_count - 1);
    return true;
}

bool uti_CoordCont3D::Remove(const int* indices, int n)
{
    if (n > 0 && !indices)
        return false;
    for (int k = 0; k < n; ++k)
        if (!Valid(indices[k]))
            return false;
    return RemovePositions(n);
}

bool uti_CoordCont3D::Remove(const cow_1DArrayList<int>& indices)
{
    for (int k = 0; k < indices.Count(); ++k)
        if (!Valid(indices[k]))
            return false;
    return RemovePositions(indices.Count());
}

bool uti_CoordCont3D::RemovePositions(int n)
{
    Changed();
    cow_1DArrayList<uti_Coord3D> points = PointsAsList();
    int count = m_count;
    for (int k = 0; k < n; ++k) {
        if (k < points.Count()) {
            points.Remove(k);
            --count;
        }
    }
    TakeList(points, count);
    return true;
}

bool uti_CoordCont3D::Grow(int n)
{
    if (n < 0)
        return false;
    if (n <= m_count) {
        if (!UsesArray()) {
            // The list keeps exactly the points in use, so that appends land after them.
            cow_1DArrayList<uti_Coord3D> points = m_list;
            while (points.Count() > n)
                points.Remove(points.Count() - 1);
            TakeList(points, n);
        } else {
            m_count = n;
            Changed();
        }
        return true;
    }
    if ((m_count > 0 && !UsesArray()) || n >= ListThreshold) {
        cow_1DArrayList<uti_Coord3D> points = PointsAsList();
        const uti_Coord3D origin;
        while (points.Count() < n)
            points.Append(origin);
        TakeList(points, n);
        return true;
    }
    float* grown = NewFloats(3 * n);
    if (UsesArray())
        std::memcpy(grown, m_array, sizeof(float) * static_cast<size_t>(m_count) * 3);
    m_list.ClearAll();  // may throw: `grown` is then dropped and nothing has changed
    DropArray();
    m_array = grown;
    m_arrayLength = 3 * n;
    m_ownsArray = true;
    m_count = n;
    Changed();
    return true;
}

bool uti_CoordCont3D::AreCoordsEqual(int i, int j, float tolerance) const
{
    if (!Valid(i) || !Valid(j))
        return false;
    const double t = double(tolerance) * double(tolerance);
    return At(i).DistanceSquared(At(j)) < std::fabs(t);
}

bool uti_CoordCont3D::MixedEqual(const uti_CoordCont3D& list, const uti_CoordCont3D& array)
{
    for (int k = 0; k < list.m_count; ++k) {
        const uti_Coord3D& c = list.m_list[k];
        const float* p = array.m_array + 3 * k;
        if (!(c.X() == p[0]) || !(c.Y() == p[1]) || !(c.Z() == p[2]))
            return false;
    }
    return true;
}

bool uti_CoordCont3D::operator==(const uti_CoordCont3D& other) const
{
    if (m_count != other.m_count)
        return false;
    const bool mine = UsesArray(), theirs = other.UsesArray();
    if (mine && theirs)
        return m_arrayLength == other.m_arrayLength &&
               std::memcmp(m_array, other.m_array, sizeof(float) * static_cast<size_t>(m_arrayLength)) == 0;
    if (!mine && !theirs)
        return m_list == other.m_list;
    return mine ? MixedEqual(other, *this) : MixedEqual(*this, other);
}

uti_CoordCont3D::uti_CoordCont3D(const cls_ReadVisitor& reader) : uti_CoordCont3D()
{
    const int32_t n = reader.ReadInt(uti_fields::NumCoords);
    if (n < 0)
        NEX_RAISE(cls_BadDataException, atr_translate("uti_CoordCont3D: negative number of points %d").Arg(n));
    for (int32_t i = 0; i < n; ++i) {
        const float x = reader.ReadFloat(uti_fields::Coords);
        const float y = reader.ReadFloat(uti_fields::Coords);
        const float z = reader.ReadFloat(uti_fields::Coords);
        Append(x, y, z);
    }
}

void uti_CoordCont3D::DBWrite(const cls_WriteVisitor& writer) const
{
    writer.WriteInt(uti_fields::NumCoords, m_count);
    float x, y, z;
    for (int32_t i = 0; i < m_count; ++i) {
        GetCoord(i, x, y, z);
        writer.WriteFloat(uti_fields::Coords, x);
        writer.WriteFloat(uti_fields::Coords, y);
        writer.WriteFloat(uti_fields::Coords, z);
    }
}

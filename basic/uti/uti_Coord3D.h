/// @class uti_Coord3D
/// uti_Coord3D: a point of three single-precision coordinates.
///
/// A value type, polymorphic so that persistent subclasses and the class registry can treat it
/// like the library's other persistent objects. Equality is exact float equality of all three
/// coordinates (a NaN coordinate is unequal to everything).
/// Thread rule: a plain value; copies are independent.
#ifndef UTI_COORD3D_H
#define UTI_COORD3D_H

#include "mem/mem_AllocationOperators.h"

class cls_ReadVisitor;
class cls_WriteVisitor;
#include "zul_BasicExport.h"

class ZUL_BASIC_API uti_Coord3D : public mem_AllocationOperators {
public:
    uti_Coord3D() : m_x(0.0f), m_y(0.0f), m_z(0.0f) {}
    uti_Coord3D(float x, float y, float z) : m_x(x), m_y(y), m_z(z) {}
    uti_Coord3D(const uti_Coord3D&) = default;
    uti_Coord3D& operator=(const uti_Coord3D&) = default;
    virtual ~uti_Coord3D();

    /// Persistence: the class's id in the class registry, its fields written through a visitor,
    /// and the point read back from one.
    ///@{
    static unsigned TypeId() { return 0x20C01u; }
    explicit uti_Coord3D(const cls_ReadVisitor& reader);
    virtual void DBWrite(const cls_WriteVisitor& writer) const;
    ///@}

    float X() const { return m_x; }
    float Y() const { return m_y; }
    float Z() const { return m_z; }
    void Get(float& x, float& y, float& z) const
    {
        x = m_x;
        y = m_y;
        z = m_z;
    }
    void Set(float x, float y, float z)
    {
        m_x = x;
        m_y = y;
        m_z = z;
    }

    /// Squared distance to another point (no square root).
    double DistanceSquared(const uti_Coord3D& other) const;

    bool operator==(const uti_Coord3D& o) const { return m_x == o.m_x && m_y == o.m_y && m_z == o.m_z; }
    bool operator!=(const uti_Coord3D& o) const { return !(*this == o); }

private:
    float m_x;
    float m_y;
    float m_z;
};

#endif

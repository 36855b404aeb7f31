#include "uti/uti_Coord3D.h"

#include "cls/cls_Visitor.h"
#include "uti/impl/uti_PersistentFields.h"

uti_Coord3D::~uti_Coord3D() {}

double uti_Coord3D::DistanceSquared(const uti_Coord3D& other) const
{
    const double dx = double(m_x) - double(other.m_x);
    const double dy = double(m_y) - double(other.m_y);
    const double dz = double(m_z) - double(other.m_z);
    return dx * dx + dy * dy + dz * dz;
}

uti_Coord3D::uti_Coord3D(const cls_ReadVisitor& reader)
    : m_x(reader.ReadFloat(uti_fields::X)), m_y(reader.ReadFloat(uti_fields::Y)), m_z(reader.ReadFloat(uti_fields::Z))
{
}

void uti_Coord3D::DBWrite(const cls_WriteVisitor& writer) const
{
    writer.WriteFloat(uti_fields::X, m_x);
    writer.WriteFloat(uti_fields::Y, m_y);
    writer.WriteFloat(uti_fields::Z, m_z);
}

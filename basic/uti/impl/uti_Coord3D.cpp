#include "uti/uti_Coord3D.h"

uti_Coord3D::~uti_Coord3D() {}

double uti_Coord3D::DistanceSquared(const uti_Coord3D& other) const
{
    const double dx = double(m_x) - double(other.m_x);
    const double dy = double(m_y) - double(other.m_y);
    const double dz = double(m_z) - double(other.m_z);
    return dx * dx + dy * dy + dz * dz;
}

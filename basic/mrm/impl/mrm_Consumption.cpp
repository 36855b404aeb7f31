#include "mrm/mrm_Consumption.h"

mrm_Consumption::mrm_Consumption()
    : m_declared(0), m_pinned(0), m_pinnedBytes(0.0), m_peakPinnedBytes(0.0), m_unpinnedBytes1(0.0),
      m_unpinnedBytes0(0.0)
{
}

bool mrm_Consumption::IsZero() const
{
    return *this == mrm_Consumption();
}

bool mrm_Consumption::operator==(const mrm_Consumption& o) const
{
    return m_declared == o.m_declared && m_pinned == o.m_pinned && m_pinnedBytes == o.m_pinnedBytes &&
           m_peakPinnedBytes == o.m_peakPinnedBytes && m_unpinnedBytes1 == o.m_unpinnedBytes1 &&
           m_unpinnedBytes0 == o.m_unpinnedBytes0;
}

mrm_Consumption mrm_Consumption::operator+(const mrm_Consumption& o) const
{
    mrm_Consumption sum;
    sum.m_declared = m_declared + o.m_declared;
    sum.m_pinned = m_pinned + o.m_pinned;
    sum.m_pinnedBytes = m_pinnedBytes + o.m_pinnedBytes;
    sum.m_peakPinnedBytes = m_peakPinnedBytes + o.m_peakPinnedBytes;
    sum.m_unpinnedBytes1 = m_unpinnedBytes1 + o.m_unpinnedBytes1;
    sum.m_unpinnedBytes0 = m_unpinnedBytes0 + o.m_unpinnedBytes0;
    return sum;
}

void mrm_Consumption::CountPinned(double size, mrm_ReleaseType type, int sign)
{
    m_pinned += sign;
    m_pinnedBytes += sign * size;
    CountUnpinned(size, type, -sign);
    RaisePeak();
}

void mrm_Consumption::CountPinnedBytes(double size)
{
    m_pinnedBytes += size;
    RaisePeak();
}

void mrm_Consumption::CountUnpinned(double size, mrm_ReleaseType type, int sign)
{
    if (type == mrm_ReleaseType1)
        m_unpinnedBytes1 += sign * size;
    else if (type == mrm_ReleaseType0)
        m_unpinnedBytes0 += sign * size;
}

void mrm_Consumption::RaisePeak()
{
    if (m_pinnedBytes > m_peakPinnedBytes)
        m_peakPinnedBytes = m_pinnedBytes;
}

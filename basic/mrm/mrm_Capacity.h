/// @file
/// Capacities of the memory manager's pools: recorded and reported, not enforced.
/// Thread rule: plain values; copies are independent.
#ifndef MRM_CAPACITY_H
#define MRM_CAPACITY_H

/// A large-block pool's limits in bytes. A new capacity is limited, with both limits 0.
class mrm_Capacity {
public:
    mrm_Capacity() : m_unlimited(false), m_lo(0.0), m_hi(0.0) {}

    void SetUnlimited() { m_unlimited = true; }
    void SetLoHi(double lo, double hi)
    {
        m_lo = lo;
        m_hi = hi;
    }

    bool IsUnlimited() const { return m_unlimited; }
    double GetLo() const { return m_lo; }
    double GetHi() const { return m_hi; }

    bool operator==(const mrm_Capacity& o) const
    {
        return m_unlimited == o.m_unlimited && m_lo == o.m_lo && m_hi == o.m_hi;
    }

private:
    bool m_unlimited;
    double m_lo;
    double m_hi;
};

/// A small-block pool's limits: the bytes out to clients (the low limit is the pool's minimum
/// reservation) and the overhead factor applied to the bytes out when reserving.
class mrm_SmallBlockCapacity {
public:
    mrm_SmallBlockCapacity() : m_unlimited(false), m_outLo(0.0), m_outHi(0.0), m_overheadFactor(1.0) {}

    void SetUnlimited() { m_unlimited = true; }
    void SetOutToClientLoHi(double lo, double hi)
    {
        m_outLo = lo;
        m_outHi = hi;
    }
    void SetOverheadFactor(double factor) { m_overheadFactor = factor; }

    bool IsUnlimited() const { return m_unlimited; }
    double GetOutToClientLo() const { return m_outLo; }
    double GetOutToClientHi() const { return m_outHi; }
    double GetOverheadFactor() const { return m_overheadFactor; }

    bool operator==(const mrm_SmallBlockCapacity& o) const
    {
        return m_unlimited == o.m_unlimited && m_outLo == o.m_outLo && m_outHi == o.m_outHi &&
               m_overheadFactor == o.m_overheadFactor;
    }

private:
    bool m_unlimited;
    double m_outLo;
    double m_outHi;
    double m_overheadFactor;
};

#endif

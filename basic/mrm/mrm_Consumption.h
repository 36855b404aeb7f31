/// @file
/// Tallies of the memory manager: what a large-block pool (or the whole block table) has
/// declared, pinned and left unpinned, and what a small-block pool has out to its clients.
/// Thread rule: plain values; copies are independent.
#ifndef MRM_CONSUMPTION_H
#define MRM_CONSUMPTION_H

#include <cstdint>

#include "zul_BasicExport.h"

/// How an unpinned block may be released; none is the state of a block that was never unpinned
/// or has been pinned again.
enum mrm_ReleaseType : int32_t {
    mrm_ReleaseType0 = 0,
    mrm_ReleaseType1 = 1,
    mrm_ReleaseTypeNone = 2,
};

/// What a large-block pool (or the whole block table) has declared, pinned and left unpinned.
class ZUL_BASIC_API mrm_Consumption {
public:
    mrm_Consumption();

    int GetDeclaredBlocks() const { return m_declared; }
    int GetPinnedBlocks() const { return m_pinned; }
    double GetPinnedBytes() const { return m_pinnedBytes; }
    double GetPeakPinnedBytes() const { return m_peakPinnedBytes; }
    double GetUnpinnedBytes1() const { return m_unpinnedBytes1; }
    double GetUnpinnedBytes0() const { return m_unpinnedBytes0; }

    /// Every field 0 (the peak included).
    bool IsZero() const;
    bool operator==(const mrm_Consumption& o) const;
    bool operator!=(const mrm_Consumption& o) const { return !(*this == o); }
    /// Field by field.
    mrm_Consumption operator+(const mrm_Consumption& o) const;

    /// The tally rules, applied alike to the block table and to the pool charged for a block.
    void CountDeclared(int delta) { m_declared += delta; }
    /// A block of `size` bytes enters (sign +1) or leaves (sign -1) the pinned state: the pinned
    /// count and bytes move by the sign, the unpinned bytes of `type` (0 or 1) against it; then
    /// the peak follows the pinned bytes up.
    void CountPinned(double size, mrm_ReleaseType type, int sign);
    /// Extra pinned bytes without a block entering (a reserve that grows).
    void CountPinnedBytes(double size);
    /// Unpinned bytes of `type` (0 or 1) moving in (+1) or out (-1) on their own.
    void CountUnpinned(double size, mrm_ReleaseType type, int sign);

private:
    void RaisePeak();

    int32_t m_declared;
    int32_t m_pinned;
    double m_pinnedBytes;
    double m_peakPinnedBytes;
    double m_unpinnedBytes1;
    double m_unpinnedBytes0;
};

/// A small-block pool's use: bytes and allocations out to its clients, and its reserve in the
/// provider.
class ZUL_BASIC_API mrm_SmallBlockConsumption {
public:
    mrm_SmallBlockConsumption(double outToClient, int allocations, double reserved)
        : m_outToClient(outToClient), m_allocations(allocations), m_reserved(reserved)
    {
    }

    double GetOutToClient() const { return m_outToClient; }
    int GetAllocations() const { return m_allocations; }
    double GetReserved() const { return m_reserved; }

    bool IsZero() const { return m_outToClient == 0.0 && m_allocations == 0 && m_reserved == 0.0; }
    bool operator==(const mrm_SmallBlockConsumption& o) const
    {
        return m_outToClient == o.m_outToClient && m_allocations == o.m_allocations && m_reserved == o.m_reserved;
    }

private:
    double m_outToClient;
    int32_t m_allocations;
    double m_reserved;
};

#endif

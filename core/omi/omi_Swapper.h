/// @class omi_Swapper
/// omi_Swapper: byte orders and byte swapping.
/// Thread rule: no state; any thread (SwapItems changes only the items it is given).
#ifndef OMI_SWAPPER_H
#define OMI_SWAPPER_H

#include <cstddef>
#include <cstdint>

#include "zul_CoreExport.h"

struct ZUL_CORE_API omi_Swapper {
    /// Native: whatever the host uses.
    enum EndianType { Native, Little, Big };

    /// Little or Big: the host's order.
    static EndianType HostOrder();
    /// Little or Big for the given type (Native resolved to the host's order).
    static EndianType Resolve(EndianType t) { return t == Native ? HostOrder() : t; }
    /// True when data in order t must be swapped to be read on this host.
    static bool NeedsSwap(EndianType t) { return Resolve(t) != HostOrder(); }

    static uint16_t Swap16(uint16_t v) { return static_cast<uint16_t>((v >> 8) | (v << 8)); }
    static uint32_t Swap32(uint32_t v)
    {
        return (v >> 24) | ((v >> 8) & 0xFF00u) | ((v << 8) & 0xFF0000u) | (v << 24);
    }
    static uint64_t Swap64(uint64_t v)
    {
        return (static_cast<uint64_t>(Swap32(static_cast<uint32_t>(v))) << 32) | Swap32(static_cast<uint32_t>(v >> 32));
    }
    /// Reverses the bytes of each of count items of itemSize bytes at p.
    static void SwapItems(void* p, size_t itemSize, size_t count);
};

#endif

#include "omi/omi_Swapper.h"

#include <cstring>

omi_Swapper::EndianType omi_Swapper::HostOrder()
{
    const uint16_t probe = 1;
    unsigned char first;
    std::memcpy(&first, &probe, 1);
    return first == 1 ? Little : Big;
}

void omi_Swapper::SwapItems(void* p, size_t itemSize, size_t count)
{
    unsigned char* b = static_cast<unsigned char*>(p);
    for (size_t i = 0; i < count; ++i, b += itemSize) {
        for (size_t lo = 0, hi = itemSize ? itemSize - 1 : 0; lo < hi; ++lo, --hi) {
            const unsigned char t = b[lo];
            b[lo] = b[hi];
            b[hi] = t;
        }
    }
}

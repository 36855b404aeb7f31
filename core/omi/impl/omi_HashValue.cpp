#include "omi/omi_HashValue.h"

#include <cstdint>

namespace {

// 64-bit finaliser (from MurmurHash3): every key bit affects every result bit, so that keys
// with regular strides (aligned addresses, consecutive ids) spread over all buckets.
uint64_t Mix(uint64_t k)
{
    k ^= k >> 33;
    k *= 0xff51afd7ed558ccdULL;
    k ^= k >> 33;
    k *= 0xc4ceb9fe1a85ec53ULL;
    k ^= k >> 33;
    return k;
}

}  // namespace

unsigned HashValue(const unsigned int& key, unsigned buckets)
{
    if (buckets == 0)
        return 0;
    return static_cast<unsigned>(Mix(key) % buckets);
}

unsigned HashValue(void* const& key, unsigned buckets)
{
    if (buckets == 0)
        return 0;
    return static_cast<unsigned>(Mix(static_cast<uint64_t>(reinterpret_cast<uintptr_t>(key))) % buckets);
}

#include "utl/utl_FileOffset.h"

#include <climits>

#include "nex/nex_Exception.h"

int utl_FileOffset::DiffAsInt32(const utl_FileOffset& other) const
{
    const int64_t d = m_value - other.m_value;
    NEX_ASSERT(d >= INT_MIN && d <= INT_MAX);
    return static_cast<int>(d);
}

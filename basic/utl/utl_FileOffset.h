/// @class utl_FileOffset
/// utl_FileOffset: a signed 64-bit byte position or size in a file.
/// Thread rule: a plain value.
#ifndef UTL_FILEOFFSET_H
#define UTL_FILEOFFSET_H

#include <cstdint>

#include "zul_BasicExport.h"

class ZUL_BASIC_API utl_FileOffset {
public:
    utl_FileOffset(int64_t value = 0) : m_value(value) {}

    int64_t Value() const { return m_value; }
    operator int64_t() const { return m_value; }

    /// this - other as a 32-bit int; a difference outside the 32-bit range raises
    /// nex_AssertException "d >= INT_MIN && d <= INT_MAX".
    int DiffAsInt32(const utl_FileOffset& other) const;

private:
    int64_t m_value;
};

#endif

/// @file
/// omi_strtoSizeT: text to size_t, like strtoull: leading white space, an optional sign, base 0
/// (decimal, 0x hexadecimal, 0 octal) or 2..36. *end (when end is not null) receives the first
/// character not used, or text itself when no digits were found. A value beyond SIZE_MAX gives
/// SIZE_MAX and sets errno to ERANGE. A '-' negates in size_t arithmetic, as strtoull does. An
/// invalid base or a null text gives 0 (errno EINVAL).
///
/// Thread rule: no state; any thread (errno is the calling thread's).
#ifndef OMI_STRTOSIZET_H
#define OMI_STRTOSIZET_H

#include <cstddef>

#include "zul_CoreExport.h"

ZUL_CORE_API size_t omi_strtoSizeT(const char* text, char** end, int base);

#endif

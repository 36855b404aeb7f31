/// @class mrm_Exception
/// mrm_Exception: a request the memory manager cannot carry out (an unknown block or pool, a
/// size out of range, a pool still in use).
/// Thread rule: nex_Exception's (an exception and its copies share their texts).
#ifndef MRM_EXCEPTION_H
#define MRM_EXCEPTION_H

#include "nex/nex_Exception.h"
#include "zul_BasicExport.h"

NEX_TEXT_EXCEPTION(mrm_Exception, nex_TextException, 0x2B0101u);

#endif

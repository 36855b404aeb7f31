// mrm_Exception: a request the memory manager cannot carry out (an unknown block or pool, a
// size out of range, a pool still in use).
#ifndef MRM_EXCEPTION_H
#define MRM_EXCEPTION_H

#include "nex/nex_Exception.h"
#include "zul_BasicExport.h"

class ZUL_BASIC_API mrm_Exception : public nex_TextException {
    NEX_EXCEPTION_CLASS(mrm_Exception, 0x2B0101u)
public:
    explicit mrm_Exception(const atr_String& text) : nex_TextException(text) {}
};

#endif

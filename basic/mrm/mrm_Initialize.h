// Start-up and shut-down of the mrm module (memory manager); see typ/typ_Module.h for the counting rule.
#ifndef MRM_INITIALIZE_H
#define MRM_INITIALIZE_H

#include "zul_BasicExport.h"

ZUL_BASIC_API void mrm_initialize(int& count);
ZUL_BASIC_API void mrm_finalize(int& count);

#endif

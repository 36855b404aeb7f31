/// @file
/// Start-up and shut-down of the mrm module (memory manager); see typ/typ_Module.h for the counting
/// rule.
/// Thread rule: on one thread, before other threads use the module and after they stop.
#ifndef MRM_INITIALIZE_H
#define MRM_INITIALIZE_H

#include "zul_BasicExport.h"

ZUL_BASIC_API void mrm_initialize(int& count);
ZUL_BASIC_API void mrm_finalize(int& count);

#endif

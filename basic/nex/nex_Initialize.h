/// @file
/// Start-up and shut-down of the nex module (exceptions); see typ/typ_Module.h for the counting
/// rule.
/// Thread rule: on one thread, before other threads use the module and after they stop.
#ifndef NEX_INITIALIZE_H
#define NEX_INITIALIZE_H

#include "zul_BasicExport.h"

ZUL_BASIC_API void nex_initialize(int& count);
ZUL_BASIC_API void nex_finalize(int& count);

#endif

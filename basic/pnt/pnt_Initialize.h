/// @file
/// Start-up and shut-down of the pnt module (pretty printing); see typ/typ_Module.h for the counting
/// rule.
/// Thread rule: on one thread, before other threads use the module and after they stop.
#ifndef PNT_INITIALIZE_H
#define PNT_INITIALIZE_H

#include "zul_BasicExport.h"

ZUL_BASIC_API void pnt_initialize(int& count);
ZUL_BASIC_API void pnt_finalize(int& count);

#endif

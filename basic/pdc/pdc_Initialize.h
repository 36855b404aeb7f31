/// @file
/// Start-up and shut-down of the pdc module (persistent data); see typ/typ_Module.h for the counting
/// rule.
/// Thread rule: on one thread, before other threads use the module and after they stop.
#ifndef PDC_INITIALIZE_H
#define PDC_INITIALIZE_H

#include "zul_BasicExport.h"

ZUL_BASIC_API void pdc_initialize(int& count);
ZUL_BASIC_API void pdc_finalize(int& count);

#endif

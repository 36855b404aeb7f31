/// @file
/// Start-up and shut-down of the cls module (class registry); see typ/typ_Module.h for the counting
/// rule.
/// Thread rule: on one thread, before other threads use the module and after they stop.
#ifndef CLS_INITIALIZE_H
#define CLS_INITIALIZE_H

#include "zul_BasicExport.h"

ZUL_BASIC_API void cls_initialize(int& count);
ZUL_BASIC_API void cls_finalize(int& count);

#endif

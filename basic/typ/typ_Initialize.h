/// @file
/// Start-up and shut-down of the typ module (types, debug flags); see typ/typ_Module.h for the
/// counting rule.
/// Thread rule: on one thread, before other threads use the module and after they stop.
#ifndef TYP_INITIALIZE_H
#define TYP_INITIALIZE_H

#include "zul_BasicExport.h"

ZUL_BASIC_API void typ_initialize(int& count);
ZUL_BASIC_API void typ_finalize(int& count);

#endif

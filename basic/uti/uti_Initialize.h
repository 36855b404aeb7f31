/// @file
/// Start-up and shut-down of the uti module (utilities); see typ/typ_Module.h for the counting rule.
/// Thread rule: on one thread, before other threads use the module and after they stop.
#ifndef UTI_INITIALIZE_H
#define UTI_INITIALIZE_H

#include "zul_BasicExport.h"

ZUL_BASIC_API void uti_initialize(int& count);
ZUL_BASIC_API void uti_finalize(int& count);

#endif

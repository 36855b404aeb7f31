/// @file
/// Start-up and shut-down of the thr module (threads); see typ/typ_Module.h for the counting rule.
/// Thread rule: on one thread, before other threads use the module and after they stop.
#ifndef THR_INITIALIZE_H
#define THR_INITIALIZE_H

#include "zul_BasicExport.h"

ZUL_BASIC_API void thr_initialize(int& count);
ZUL_BASIC_API void thr_finalize(int& count);

#endif

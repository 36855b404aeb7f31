/// @file
/// Start-up and shut-down of the rgx module (regular expressions); see typ/typ_Module.h for the
/// counting rule.
/// Thread rule: on one thread, before other threads use the module and after they stop.
#ifndef RGX_INITIALIZE_H
#define RGX_INITIALIZE_H

#include "zul_BasicExport.h"

ZUL_BASIC_API void rgx_initialize(int& count);
ZUL_BASIC_API void rgx_finalize(int& count);

#endif

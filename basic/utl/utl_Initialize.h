/// @file
/// Start-up and shut-down of the utl module (files, streams and host); see typ/typ_Module.h for the
/// counting rule.
/// Thread rule: on one thread, before other threads use the module and after they stop.
#ifndef UTL_INITIALIZE_H
#define UTL_INITIALIZE_H

#include "zul_BasicExport.h"

ZUL_BASIC_API void utl_initialize(int& count);
ZUL_BASIC_API void utl_finalize(int& count);

#endif

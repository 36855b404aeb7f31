/// @file
/// Start-up and shut-down of the cow module (copy-on-write containers); see typ/typ_Module.h for the
/// counting rule.
/// Thread rule: on one thread, before other threads use the module and after they stop.
#ifndef COW_INITIALIZE_H
#define COW_INITIALIZE_H

#include "zul_BasicExport.h"

ZUL_BASIC_API void cow_initialize(int& count);
ZUL_BASIC_API void cow_finalize(int& count);

#endif

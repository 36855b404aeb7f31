// Start-up and shut-down of the utl module (files, streams and host); see typ/typ_Module.h for the counting rule.
#ifndef UTL_INITIALIZE_H
#define UTL_INITIALIZE_H

#include "zul_BasicExport.h"

ZUL_BASIC_API void utl_initialize(int& count);
ZUL_BASIC_API void utl_finalize(int& count);

#endif

// Start-up and shut-down of the cls module (class registry); see typ/typ_Module.h for the counting rule.
#ifndef CLS_INITIALIZE_H
#define CLS_INITIALIZE_H

#include "zul_BasicExport.h"

ZUL_BASIC_API void cls_initialize(int& count);
ZUL_BASIC_API void cls_finalize(int& count);

#endif

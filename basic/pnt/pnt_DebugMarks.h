/// @file
/// The two fixed lines that frame the library's diagnostic prints.
/// Thread rule: constant texts; any thread.
#ifndef PNT_DEBUGMARKS_H
#define PNT_DEBUGMARKS_H

#include "zul_BasicExport.h"

ZUL_BASIC_API const char* pnt_DebugStartMark();
ZUL_BASIC_API const char* pnt_DebugEndMark();

#endif

/// @file
/// Start-up and shut-down of the lower library.
///
/// Counting rule (the same for every module of the family): a plain static use count. initialize
/// raises it and, only when it goes from 0 to 1, adds 1 to `count` and does the start-up work;
/// finalize lowers it and, only when it goes from 1 to 0, subtracts 1 from `count` and tears down.
/// The count is not clamped: a surplus finalize drives it below zero.
///
/// Thread rule: initialize and finalize run on one thread, before other threads use the library
/// and after they stop.
#ifndef OMI_COREUTILS_H
#define OMI_COREUTILS_H

#include "zul_CoreExport.h"

ZUL_CORE_API void UTI_CoreUtils_initialize(int& count);
ZUL_CORE_API void UTI_CoreUtils_finalize(int& count);

/// The library's use count (for tests).
ZUL_CORE_API int UTI_CoreUtils_useCount();

#endif

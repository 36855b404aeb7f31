/// @file
/// The start-up and shut-down counting rule every module follows, and a diagnostic observer.
///
/// Each module keeps a plain int use count (starting at 0). Bringing it up stores count + 1 and
/// does the module's start-up work only when the old count was exactly 0; taking it down stores
/// count - 1 and does the tear-down only when the old count was exactly 1. The count is not
/// clamped: a surplus tear-down drives it below zero and does nothing, and later start-ups only
/// count back up. The caller's tally moves by one each time a module changes state.
/// Thread rule: nothing here is locked: the start-up and shut-down chain, and the setting of the
/// observer, run on one thread.
#ifndef TYP_MODULE_H
#define TYP_MODULE_H

#include "zul_BasicExport.h"

/// Called after a module's start-up work (up = true) and before its tear-down work (up = false).
/// A test and diagnostic hook; null (the default) observes nothing.
typedef void (*typ_ModuleObserver)(const char* module, bool up);
ZUL_BASIC_API typ_ModuleObserver typ_SetModuleObserver(typ_ModuleObserver observer);

typedef void (*typ_ModuleWork)();
/// Counts the module up; on its first use adds 1 to the tally and runs the start-up work (may be
/// null).
ZUL_BASIC_API void typ_InitializeModule(const char* module, int& useCount, int& tally, typ_ModuleWork startUp);
/// Counts the module down; on its last use subtracts 1 from the tally and runs the tear-down work
/// (may be null).
ZUL_BASIC_API void typ_FinalizeModule(const char* module, int& useCount, int& tally, typ_ModuleWork tearDown);

#endif

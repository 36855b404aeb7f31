/// @file
/// Start-up and shut-down of the whole library.
///
/// Call UTI_BasicUtils_initialize once before using anything that keeps global state, and
/// UTI_BasicUtils_finalize at the end. The first call brings up the lower library and then the
/// modules typ, thr, pnt, mrm, bio, cow, cls, nex, rgx, pdc, utl, uti in that order; the matching
/// last finalize takes them down in exactly the reverse order. Nested calls are only counted.
/// `count` is the caller's tally of modules that changed state (a local int starting at 0).
///
/// Thread rule: both calls on one thread, before other threads use the library and after they
/// stop.
#ifndef UTI_BASICUTILS_H
#define UTI_BASICUTILS_H

#include "zul_BasicExport.h"

ZUL_BASIC_API void UTI_BasicUtils_initialize(int& count);
ZUL_BASIC_API void UTI_BasicUtils_finalize(int& count);

/// An entry point that a client can reference; it does nothing.
ZUL_BASIC_API void uti_formalize();

#endif

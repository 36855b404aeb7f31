/// @file
/// Start-up and shut-down of the bio module (buffered I/O); see typ/typ_Module.h for the counting
/// rule.
/// Thread rule: on one thread, before other threads use the module and after they stop.
#ifndef BIO_INITIALIZE_H
#define BIO_INITIALIZE_H

#include "zul_BasicExport.h"

ZUL_BASIC_API void bio_initialize(int& count);
ZUL_BASIC_API void bio_finalize(int& count);

#endif

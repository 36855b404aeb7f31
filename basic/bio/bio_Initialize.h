// Start-up and shut-down of the bio module (buffered I/O); see typ/typ_Module.h for the counting rule.
#ifndef BIO_INITIALIZE_H
#define BIO_INITIALIZE_H

#include "zul_BasicExport.h"

ZUL_BASIC_API void bio_initialize(int& count);
ZUL_BASIC_API void bio_finalize(int& count);

#endif

#include "zul_Version.h"

// Compiled into the library, so that it answers the version of the library the process loaded,
// whichever headers the caller was compiled with.
const char* zul_VersionString() { return ZULFNDUTI_VERSION_STRING; }

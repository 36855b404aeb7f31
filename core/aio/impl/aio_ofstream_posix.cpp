#include <sys/types.h>

#include "aio/impl/aio_FileSeek.h"

int aio_FileSeek64(FILE* f, long long offset, int whence) { return fseeko(f, static_cast<off_t>(offset), whence); }

long long aio_FileTell64(FILE* f) { return static_cast<long long>(ftello(f)); }

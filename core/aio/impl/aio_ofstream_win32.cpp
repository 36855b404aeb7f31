#include "aio/impl/aio_FileSeek.h"

int aio_FileSeek64(FILE* f, long long offset, int whence) { return _fseeki64(f, offset, whence); }

long long aio_FileTell64(FILE* f) { return _ftelli64(f); }

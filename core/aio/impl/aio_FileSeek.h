// 64-bit positioning of C runtime streams (platform files aio_ofstream_posix/_win32).
#ifndef AIO_FILESEEK_H
#define AIO_FILESEEK_H

#include <cstdio>

// whence: SEEK_SET, SEEK_CUR, SEEK_END. Returns 0 on success.
int aio_FileSeek64(FILE* f, long long offset, int whence);
// -1 on failure.
long long aio_FileTell64(FILE* f);

#endif

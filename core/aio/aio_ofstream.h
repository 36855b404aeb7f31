/// @class aio_ofstream
/// aio_ofstream: an output stream to a file, over the C runtime's stdio in binary mode (bytes are
/// written as given, no newline translation). Offsets are 64-bit.
/// Thread rule: one stream, one thread at a time.
#ifndef AIO_OFSTREAM_H
#define AIO_OFSTREAM_H

#include <cstdio>

#include "aio/aio_ostream.h"

class ZUL_CORE_API aio_ofstream : public aio_ostream {
public:
    aio_ofstream();
    /// Opens at once; check is_open() / good().
    explicit aio_ofstream(const char* path, bool append = false);
    ~aio_ofstream() override;

    /// Opens the file for writing: truncated, or (append) kept with the position at its end.
    /// In append mode seekp still moves the write position. A stream that is open is closed
    /// first. Returns false (and marks the stream failed) when the file cannot be opened.
    bool open(const char* path, bool append = false);
    bool is_open() const { return m_file != nullptr; }
    /// Flushes and closes; a failure to flush or close marks the stream failed.
    void close() override;

    /// Moves the write position; a failed or impossible seek marks the stream failed.
    aio_ofstream& seekp(long long offset, aio_ios::seek_dir dir = aio_ios::beg);
    /// The write position, or -1 when the stream is not open or the position is unknown.
    long long tellp();

protected:
    void DoWrite(const char* s, size_t n) override;
    void DoFlush() override;

private:
    FILE* m_file;
};

#endif

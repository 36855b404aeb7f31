/// @class aio_ostrstream
/// aio_ostrstream: an output stream into a growing zero-terminated memory buffer.
///
/// The buffer is allocated with the stream's allocation function (default mem_OperatorNewThrow);
/// whatever function is given must return blocks that mem_Free releases. The text ends at the
/// write position: seekp moves it within the text written so far and drops what follows it.
///
/// Thread rule: one stream, one thread at a time.
#ifndef AIO_OSTRSTREAM_H
#define AIO_OSTRSTREAM_H

#include "aio/aio_ostream.h"

class ZUL_CORE_API aio_ostrstream : public aio_ostream {
public:
    typedef void* (*AllocFn)(size_t);

    explicit aio_ostrstream(AllocFn alloc = nullptr);
    ~aio_ostrstream() override;

    /// The text written so far (zero-terminated; "" when nothing was written).
    const char* str() const;
    /// Its length in bytes.
    int pcount() const { return m_length; }

    /// Hands the zero-terminated buffer to the caller (free it with mem_Free); the stream is left
    /// empty and usable. Never null: an empty stream hands over a fresh one-byte buffer made with
    /// `alloc` (or the stream's allocation function when alloc is null).
    ///@{
    char* adoptString();
    char* adoptString(AllocFn alloc);
    ///@}

    /// Moves the write position to offset from the start, the position (cur) or the end of the
    /// text; the text is cut there. A target outside 0..pcount() marks the stream failed and
    /// leaves it unchanged.
    aio_ostrstream& seekp(long long offset, aio_ios::seek_dir dir = aio_ios::beg);
    long long tellp() const { return m_length; }

protected:
    void DoWrite(const char* s, size_t n) override;

private:
    AllocFn m_alloc;
    char* m_buffer;
    int m_length;
    int m_capacity;  ///< bytes in m_buffer, terminator included
};

#endif

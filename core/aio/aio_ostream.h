/// @file
/// Low-level output streams: aio_ios (state and seek directions) and aio_ostream (formatted
/// output over a byte sink). Derived streams supply DoWrite (and DoFlush when they buffer).
///
/// The free operators (<< for texts, chars, ints, strings) and endl belong to the upper library;
/// this class has members only.
///
/// Thread rule: one stream, one thread at a time. The exceptions are aio_cout() and aio_cerr(),
/// made once on first use and written by several threads (the thread pool reports failed tasks
/// on aio_cerr): each call writes its text with one fwrite, which the C runtime keeps whole, but
/// a chain of calls can interleave with another thread's, and their failure flag is set without
/// a lock.
#ifndef AIO_OSTREAM_H
#define AIO_OSTREAM_H

#include <cstddef>

#include "zul_CoreExport.h"

/// The state of a stream (good or failed) and the seek directions.
class ZUL_CORE_API aio_ios {
public:
    /// Where a seek offset counts from: the start, the current position or the end.
    enum seek_dir { beg, cur, end };

    aio_ios() : m_good(true) {}
    virtual ~aio_ios();
    /// Releases whatever the stream writes to; the base has nothing to release.
    virtual void close();
    /// False once an operation has failed; stays false until clear().
    bool good() const { return m_good; }
    bool fail() const { return !m_good; }
    void clear() { m_good = true; }

protected:
    void setfail() { m_good = false; }

private:
    aio_ios(const aio_ios&) = delete;
    aio_ios& operator=(const aio_ios&) = delete;

    bool m_good;
};

/// Formatted output over a byte sink; derived streams supply DoWrite (and DoFlush when they buffer).
class ZUL_CORE_API aio_ostream : public aio_ios {
public:
    aio_ostream() {}
    ~aio_ostream() override;

    /// Writes a zero-terminated text (null writes nothing).
    aio_ostream& print(const char* s);
    aio_ostream& put(char c);
    aio_ostream& print_int(int v);
    aio_ostream& print_unsigned(unsigned v);
    aio_ostream& print_longlong(long long v);
    /// "%.*g" with the given precision (precision < 0: 6).
    aio_ostream& print_double(double v, int precision);
    /// Writes n bytes (n <= 0 writes nothing).
    aio_ostream& write(const char* s, int n);
    aio_ostream& flush();
    aio_ostream& operator<<(aio_ostream& (*manip)(aio_ostream&)) { return manip(*this); }

protected:
    /// Writes all n bytes or marks the stream failed (setfail).
    virtual void DoWrite(const char* s, size_t n) = 0;
    virtual void DoFlush();
};

/// The process's standard output and standard error (over the C runtime's stdout and stderr, so
/// they keep order with printf). The error stream flushes after every write.
///@{
ZUL_CORE_API aio_ostream& aio_cout();
ZUL_CORE_API aio_ostream& aio_cerr();
///@}

#endif

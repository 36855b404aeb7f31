#include "aio/aio_ostream.h"

#include <cstdio>
#include <cstring>

aio_ios::~aio_ios() {}

void aio_ios::close() {}

aio_ostream::~aio_ostream() {}

aio_ostream& aio_ostream::print(const char* s)
{
    if (s && *s)
        DoWrite(s, std::strlen(s));
    return *this;
}

aio_ostream& aio_ostream::put(char c)
{
    DoWrite(&c, 1);
    return *this;
}

aio_ostream& aio_ostream::print_int(int v)
{
    char buf[16];
    const int n = std::snprintf(buf, sizeof buf, "%d", v);
    DoWrite(buf, static_cast<size_t>(n));
    return *this;
}

aio_ostream& aio_ostream::print_unsigned(unsigned v)
{
    char buf[16];
    const int n = std::snprintf(buf, sizeof buf, "%u", v);
    DoWrite(buf, static_cast<size_t>(n));
    return *this;
}

aio_ostream& aio_ostream::print_longlong(long long v)
{
    char buf[32];
    const int n = std::snprintf(buf, sizeof buf, "%lld", v);
    DoWrite(buf, static_cast<size_t>(n));
    return *this;
}

aio_ostream& aio_ostream::print_double(double v, int precision)
{
    if (precision < 0)
        precision = 6;
    if (precision > 60)
        precision = 60;
    // "%.60g" of the largest double is under 400 characters.
    char buf[512];
    const int n = std::snprintf(buf, sizeof buf, "%.*g", precision, v);
    if (n > 0)
        DoWrite(buf, static_cast<size_t>(n < static_cast<int>(sizeof buf) ? n : static_cast<int>(sizeof buf) - 1));
    return *this;
}

aio_ostream& aio_ostream::write(const char* s, int n)
{
    if (s && n > 0)
        DoWrite(s, static_cast<size_t>(n));
    return *this;
}

aio_ostream& aio_ostream::flush()
{
    DoFlush();
    return *this;
}

void aio_ostream::DoFlush() {}

namespace {

// A stream over one of the C runtime's standard streams (which it does not own).
class aio_StdStream : public aio_ostream {
public:
    aio_StdStream(FILE* f, bool flushEach) : m_file(f), m_flushEach(flushEach) {}

protected:
    void DoWrite(const char* s, size_t n) override
    {
        if (std::fwrite(s, 1, n, m_file) != n)
            setfail();
        if (m_flushEach)
            std::fflush(m_file);
    }
    void DoFlush() override
    {
        if (std::fflush(m_file) != 0)
            setfail();
    }

private:
    FILE* m_file;
    bool m_flushEach;
};

}  // namespace

// Made on first use; they never close the runtime's streams.
aio_ostream& aio_cout()
{
    static aio_StdStream s(stdout, false);
    return s;
}

aio_ostream& aio_cerr()
{
    static aio_StdStream s(stderr, true);
    return s;
}

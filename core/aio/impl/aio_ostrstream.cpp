#include "aio/aio_ostrstream.h"

#include <climits>
#include <cstring>

#include "mem/mem_Memory.h"
#include "mem/mem_OutOfMemory.h"

aio_ostrstream::aio_ostrstream(AllocFn alloc)
    : m_alloc(alloc ? alloc : &mem_OperatorNewThrow), m_buffer(nullptr), m_length(0), m_capacity(0)
{
}

aio_ostrstream::~aio_ostrstream() { mem_Free(m_buffer); }

const char* aio_ostrstream::str() const { return m_buffer ? m_buffer : ""; }

void aio_ostrstream::DoWrite(const char* s, size_t n)
{
    if (n > static_cast<size_t>(INT_MAX - 1 - m_length)) {
        setfail();
        return;
    }
    const size_t need = static_cast<size_t>(m_length) + n + 1;
    if (need > static_cast<size_t>(m_capacity)) {
        size_t cap = static_cast<size_t>(m_capacity) * 2;
        if (cap < 64)
            cap = 64;
        if (cap < need)
            cap = need;
        if (cap > static_cast<size_t>(INT_MAX))
            cap = static_cast<size_t>(INT_MAX);
        // The allocation function may throw; the stream is unchanged then.
        char* b = static_cast<char*>(m_alloc(cap));
        if (!b) {
            setfail();
            return;
        }
        if (m_length)
            std::memcpy(b, m_buffer, static_cast<size_t>(m_length));
        mem_Free(m_buffer);
        m_buffer = b;
        m_capacity = static_cast<int>(cap);
    }
    std::memcpy(m_buffer + m_length, s, n);
    m_length += static_cast<int>(n);
    m_buffer[m_length] = '\0';
}

char* aio_ostrstream::adoptString() { return adoptString(nullptr); }

char* aio_ostrstream::adoptString(AllocFn alloc)
{
    char* b = m_buffer;
    if (!b) {
        b = static_cast<char*>((alloc ? alloc : m_alloc)(1));
        if (!b)
            mem_ThrowOutOfMemory(1);
        b[0] = '\0';
    }
    m_buffer = nullptr;
    m_length = 0;
    m_capacity = 0;
    return b;
}

aio_ostrstream& aio_ostrstream::seekp(long long offset, aio_ios::seek_dir dir)
{
    // beg and cur/end coincide: the write position is always the end of the text.
    const long long base = dir == aio_ios::beg ? 0 : m_length;
    const long long target = base + offset;
    if (target < 0 || target > m_length) {
        setfail();
        return *this;
    }
    m_length = static_cast<int>(target);
    if (m_buffer)
        m_buffer[m_length] = '\0';
    return *this;
}

#include "aio/aio_ofstream.h"

#include "aio/impl/aio_FileSeek.h"

aio_ofstream::aio_ofstream() : m_file(nullptr) {}

aio_ofstream::aio_ofstream(const char* path, bool append) : m_file(nullptr) { open(path, append); }

aio_ofstream::~aio_ofstream() { close(); }

bool aio_ofstream::open(const char* path, bool append)
{
    if (m_file)
        close();
    clear();
    if (!path || !*path) {
        setfail();
        return false;
    }
    if (append) {
        // "r+b" rather than "ab": writes must follow seekp, which append mode ignores.
        m_file = std::fopen(path, "r+b");
        if (!m_file)
            m_file = std::fopen(path, "w+b");
        if (m_file && aio_FileSeek64(m_file, 0, SEEK_END) != 0) {
            std::fclose(m_file);
            m_file = nullptr;
        }
    } else {
        m_file = std::fopen(path, "wb");
    }
    if (!m_file) {
        setfail();
        return false;
    }
    return true;
}

void aio_ofstream::close()
{
    if (!m_file)
        return;
    if (std::fclose(m_file) != 0)
        setfail();
    m_file = nullptr;
}

aio_ofstream& aio_ofstream::seekp(long long offset, aio_ios::seek_dir dir)
{
    if (!m_file) {
        setfail();
        return *this;
    }
    const int whence = dir == aio_ios::beg ? SEEK_SET : (dir == aio_ios::cur ? SEEK_CUR : SEEK_END);
    if (aio_FileSeek64(m_file, offset, whence) != 0)
        setfail();
    return *this;
}

long long aio_ofstream::tellp()
{
    if (!m_file)
        return -1;
    return aio_FileTell64(m_file);
}

void aio_ofstream::DoWrite(const char* s, size_t n)
{
    if (!m_file || std::fwrite(s, 1, n, m_file) != n)
        setfail();
}

void aio_ofstream::DoFlush()
{
    if (m_file && std::fflush(m_file) != 0)
        setfail();
}

#include "utl/utl_BinStream.h"

#include <cerrno>
#include <cstring>

#include "atr/atr_translate.h"
#include "mem/mem_Memory.h"
#include "utl/impl/utl_BinStreamIo.h"

namespace {

void SetBinary(int fd)
{
    const int e = utl_BinStreamSetBinary(fd);
    if (e != 0)
        NEX_RAISE(utl_BinStreamException,
                  atr_translate("*** ERROR: Can't set stream to binary mode: %s").Arg(std::strerror(e)).Result());
}

atr_String SystemText(int e)
{
    return atr_translate("%s").Arg(std::strerror(e)).Result();
}

}  // namespace

utl_BinOStream::utl_BinOStream(int fd, omi_Swapper::EndianType) : m_fd(fd)
{
    SetBinary(fd);
}

void utl_BinOStream::Write(const char* data, int count)
{
    while (count > 0) {
        const int done = utl_BinStreamWriteFd(m_fd, data, count);
        if (done < 0)
            NEX_RAISE(utl_BinStreamWriteError, SystemText(errno));
        data += done;
        count -= done;
    }
}

void utl_BinOStream::WriteString(const cow_String& s)
{
    const int n = s.Length();
    WriteInt(n);
    Write(s.c_str(), n);
}

utl_BinIStream::utl_BinIStream(int fd, omi_Swapper::EndianType) : m_fd(fd)
{
    SetBinary(fd);
}

void utl_BinIStream::Read(char* data, int count) const
{
    while (count > 0) {
        const int done = utl_BinStreamReadFd(m_fd, data, count);
        if (done == 0)
            NEX_RAISE(utl_BinStreamEOF, atr_String("*** ERROR: End of file on binary stream."));
        if (done < 0)
            NEX_RAISE(utl_BinStreamReadError, SystemText(errno));
        data += done;
        count -= done;
    }
}

cow_String utl_BinIStream::ReadString() const
{
    const int n = ReadInt();
    if (n < 0)
        NEX_RAISE(utl_BinStreamBadLength,
                  atr_translate("*** ERROR: Invalid string length %d on binary stream.").Arg(n).Result());
    char* buffer = static_cast<char*>(mem_OperatorNewThrow(static_cast<size_t>(n) + 1));
    try {
        Read(buffer, n);
    } catch (...) {
        mem_Free(buffer);
        throw;
    }
    buffer[n] = '\0';
    return cow_String(buffer, n, atr_StringBase::ADOPT);
}

#include "utl/utl_Stat.h"

utl_Stat::utl_Stat(const cow_String& path)
{
    Clear();
    ReadPath(path);
}

utl_Stat::utl_Stat(int descriptor)
{
    Clear();
    ReadDescriptor(descriptor);
}

utl_Stat::utl_Stat(void* handle)
{
    Clear();
    ReadHandle(handle);
}

void utl_Stat::Clear()
{
    m_size = m_fileIndex = 0;
    m_links = 0;
    m_accessTime = m_writeTime = m_creationTime = 0;
    m_isDir = m_isNormal = m_found = 0;
    m_error = omi_SystemErrorCode();
}

void utl_Stat::ThrowIfFileNotFound() const
{
    if (!m_found)
        Raise(m_error);
}

void utl_Stat::Raise(const omi_SystemErrorCode& error)
{
    NEX_RAISE(nex_SystemErrorException, error);
}

int64_t utl_Stat::SecondsFromFileTime(uint64_t ticksSince1601)
{
    return static_cast<int64_t>(static_cast<double>(ticksSince1601) / 1e7 - 11644473600.0 + 0.5);
}

#include "utl/utl_Catenator.h"

#include <cstring>
#include <new>

#include "mem/mem_Memory.h"

utl_Catenator::utl_Catenator() : m_text(StringCapacity, atr_StringBase::PRESIZE), m_stream(nullptr) {}

utl_Catenator::~utl_Catenator()
{
    if (m_stream) {
        m_stream->close();
        m_stream->~aio_ostrstream();
        mem_Free(m_stream);
    }
}

utl_Catenator& utl_Catenator::Cat(const char* text, int length)
{
    if (length <= 0)
        return *this;
    if (m_stream) {
        m_stream->write(text, length);
    } else if (m_text.Length() + length >= StringCapacity) {
        void* raw = mem_OperatorNewThrow(sizeof(aio_ostrstream));
        aio_ostrstream* stream = ::new (raw) aio_ostrstream(&mem_OperatorNewThrow);
        stream->write(m_text.c_str(), m_text.Length());
        m_stream = stream;
        m_text = cow_String();
        m_stream->write(text, length);
    } else {
        m_text.append(text, length);
    }
    return *this;
}

utl_Catenator& utl_Catenator::Erase()
{
    if (m_stream)
        m_stream->seekp(0, aio_ios::beg);
    else
        m_text.Erase(0, -1);
    return *this;
}

cow_String utl_Catenator::GetString()
{
    if (m_stream) {
        char* buffer = m_stream->adoptString(&mem_OperatorNewThrow);
        if (!buffer)
            return cow_String();
        return cow_String(buffer, static_cast<int>(std::strlen(buffer)), atr_StringBase::ADOPT);
    }
    if (m_text.Length() >= ShareFrom)
        return m_text;
    return cow_String(m_text.c_str(), m_text.Length());
}

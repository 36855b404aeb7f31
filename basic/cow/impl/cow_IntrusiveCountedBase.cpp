#include "cow/cow_IntrusiveCountedBase.h"

#include "aio/aio_ostream.h"

void cow_IntrusiveCountedBase::SetCounter(cow_Counter* counter)
{
    if (m_counter && counter != m_counter)
        aio_cerr().print("ERROR: Resetting counter on cow_IntrusiveCountedBase\n").flush();
    m_counter = counter;
}

#include "thr/thr_CondVar.h"

#include "mem/mem_Memory.h"
#include "thr/impl/thr_Os.h"

thr_CondVar::thr_CondVar() : m_cell(static_cast<void**>(mem_OperatorNewThrow(sizeof(void*))))
{
    try {
        *m_cell = thr_os::EventCreate();
    } catch (...) {
        mem_Free(m_cell);
        throw;
    }
}

thr_CondVar::~thr_CondVar()
{
    thr_os::EventDestroy(*m_cell);
    mem_Free(m_cell);
    m_cell = nullptr;
}

void thr_CondVar::WaitForSignal(int seconds)
{
    thr_os::EventWait(*m_cell, seconds < 1 ? -1L : static_cast<long>(seconds) * 1000L);
}

bool thr_CondVar::WaitForSignalMilliseconds(long milliseconds)
{
    return thr_os::EventWait(*m_cell, milliseconds);
}

void thr_CondVar::Signal() { thr_os::EventSet(*m_cell); }
void thr_CondVar::ResetSignal() { thr_os::EventReset(*m_cell); }

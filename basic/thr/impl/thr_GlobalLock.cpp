#include "thr/thr_GlobalLock.h"

thr_GlobalLock::thr_GlobalLock() : m_mutex(new thr_Mutex(0)) {}

thr_GlobalLock::~thr_GlobalLock()
{
    delete m_mutex;
}

thr_GlobalLock& thr_GlobalLock::Instance()
{
    return omi_Singleton<thr_GlobalLock>::Instance();
}

void thr_GlobalLock::Finalize()
{
    omi_SingletonBase<thr_GlobalLock>::Finalize();
}

#include "thr/thr_Initialize.h"

#include "thr/thr_GlobalLock.h"
#include "thr/thr_LockPool.h"
#include "thr/thr_GlobalSingleton.h"
#include "thr/thr_ThreadPool.h"
#include "thr/thr_ThreadSingleton.h"
#include "typ/typ_Module.h"

namespace {

int g_useCount = 0;

// A hook for platforms that need work before the first lock; nothing is needed here.
void StartUpHook(int) {}

void StartUp()
{
    StartUpHook(0);
    thr_GlobalLock::Instance();
    // Made here, before any thread can ask for it: its first Instance() takes no lock.
    (void)thr_LockPool::Instance();
    thr_ThreadPool::SetMainThread();
}

void TearDown()
{
    thr_GlobalSingletonBase<thr_ThreadPool>::Finalize();
    thr_FinalizeGlobalSingletons();
    thr_ThrSingletonRegistry::TearDown();
    thr_LockPool::Finalize();
    thr_GlobalLock::Finalize();
}

}  // namespace

void thr_initialize(int& count)
{
    typ_InitializeModule("thr", g_useCount, count, &StartUp);
}

void thr_finalize(int& count)
{
    typ_FinalizeModule("thr", g_useCount, count, &TearDown);
}

#include "mem_PoolOs.h"

#include <malloc.h>
#include <pthread.h>
#include <sys/mman.h>

namespace mem_os {

void* Reserve(size_t bytes)
{
    // Not accessible and not charged against the commit limit until Commit.
    void* p = mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    return p == MAP_FAILED ? nullptr : p;
}

bool Commit(void* p, size_t bytes) { return mprotect(p, bytes, PROT_READ | PROT_WRITE) == 0; }

size_t RuntimeBlockSize(void* p) { return malloc_usable_size(p); }

namespace {

void (*g_exitHook)(void*) = nullptr;
pthread_key_t g_exitKey;
pthread_once_t g_exitKeyOnce = PTHREAD_ONCE_INIT;
bool g_exitKeyMade = false;

void RunExitHook(void* data)
{
    if (g_exitHook)
        g_exitHook(data);
}

void MakeExitKey() { g_exitKeyMade = pthread_key_create(&g_exitKey, &RunExitHook) == 0; }

}  // namespace

void SetThreadExitHook(void (*hook)(void*))
{
    pthread_once(&g_exitKeyOnce, &MakeExitKey);
    g_exitHook = hook;
}

bool WatchThreadExit(void* data)
{
    pthread_once(&g_exitKeyOnce, &MakeExitKey);
    return g_exitKeyMade && pthread_setspecific(g_exitKey, data) == 0;
}

}  // namespace mem_os

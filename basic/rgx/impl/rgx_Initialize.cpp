#include "rgx/rgx_Initialize.h"

#include "rgx/rgx_ReCompileCache.h"
#include "thr/thr_ThreadSingleton.h"
#include "typ/typ_Module.h"

namespace {
int g_useCount = 0;

// The thread that brings the library up gets its cache now; other threads get theirs on their
// first match.
void StartUp() { rgx_ReCompileCache::Instance(); }

void TearDown() { thr_ThreadSingleton<rgx_ReCompileCache>::Release(); }
}  // namespace

void rgx_initialize(int& count)
{
    typ_InitializeModule("rgx", g_useCount, count, &StartUp);
}

void rgx_finalize(int& count)
{
    typ_FinalizeModule("rgx", g_useCount, count, &TearDown);
}

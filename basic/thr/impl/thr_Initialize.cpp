#include "thr/thr_Initialize.h"

#include "typ/typ_Module.h"

namespace {
int g_useCount = 0;
}  // namespace
// The module keeps no state yet: its start-up and tear-down work come with its classes.

void thr_initialize(int& count)
{
    typ_InitializeModule("thr", g_useCount, count, nullptr);
}

void thr_finalize(int& count)
{
    typ_FinalizeModule("thr", g_useCount, count, nullptr);
}

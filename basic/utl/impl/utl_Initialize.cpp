#include "utl/utl_Initialize.h"

#include "typ/typ_Module.h"

namespace {
int g_useCount = 0;
}  // namespace
// The module keeps no state yet: its start-up and tear-down work come with its classes.

void utl_initialize(int& count)
{
    typ_InitializeModule("utl", g_useCount, count, nullptr);
}

void utl_finalize(int& count)
{
    typ_FinalizeModule("utl", g_useCount, count, nullptr);
}

#include "mrm/mrm_Initialize.h"

#include "typ/typ_Module.h"

namespace {
int g_useCount = 0;
}  // namespace
// The module keeps no state yet: its start-up and tear-down work come with its classes.

void mrm_initialize(int& count)
{
    typ_InitializeModule("mrm", g_useCount, count, nullptr);
}

void mrm_finalize(int& count)
{
    typ_FinalizeModule("mrm", g_useCount, count, nullptr);
}

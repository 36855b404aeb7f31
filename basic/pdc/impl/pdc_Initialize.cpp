#include "pdc/pdc_Initialize.h"

#include "typ/typ_Module.h"

namespace {
int g_useCount = 0;
}  // namespace
// The module keeps no state yet: its start-up and tear-down work come with its classes.

void pdc_initialize(int& count)
{
    typ_InitializeModule("pdc", g_useCount, count, nullptr);
}

void pdc_finalize(int& count)
{
    typ_FinalizeModule("pdc", g_useCount, count, nullptr);
}

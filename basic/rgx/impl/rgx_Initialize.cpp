#include "rgx/rgx_Initialize.h"

#include "typ/typ_Module.h"

namespace {
int g_useCount = 0;
}  // namespace
// The module keeps no state yet: its start-up and tear-down work come with its classes.

void rgx_initialize(int& count)
{
    typ_InitializeModule("rgx", g_useCount, count, nullptr);
}

void rgx_finalize(int& count)
{
    typ_FinalizeModule("rgx", g_useCount, count, nullptr);
}

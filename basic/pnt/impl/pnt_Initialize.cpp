#include "pnt/pnt_Initialize.h"

#include "typ/typ_Module.h"

namespace {
int g_useCount = 0;
}  // namespace
// The module keeps no state yet: its start-up and tear-down work come with its classes.

void pnt_initialize(int& count)
{
    typ_InitializeModule("pnt", g_useCount, count, nullptr);
}

void pnt_finalize(int& count)
{
    typ_FinalizeModule("pnt", g_useCount, count, nullptr);
}

#include "bio/bio_Initialize.h"

#include "typ/typ_Module.h"

namespace {
int g_useCount = 0;
}  // namespace
// The module keeps no state yet: its start-up and tear-down work come with its classes.

void bio_initialize(int& count)
{
    typ_InitializeModule("bio", g_useCount, count, nullptr);
}

void bio_finalize(int& count)
{
    typ_FinalizeModule("bio", g_useCount, count, nullptr);
}

#include "omi/omi_CoreUtils.h"

namespace {
int g_useCount = 0;
}

void UTI_CoreUtils_initialize(int& count)
{
    const int old = g_useCount++;
    if (old != 0)
        return;
    ++count;
    // Nothing to start: every facility of this library is ready without set-up.
}

void UTI_CoreUtils_finalize(int& count)
{
    const int old = g_useCount--;
    if (old != 1)
        return;
    --count;
}

int UTI_CoreUtils_useCount() { return g_useCount; }

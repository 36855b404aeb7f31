#include "typ/typ_Module.h"

namespace {
typ_ModuleObserver g_observer = nullptr;
}

typ_ModuleObserver typ_SetModuleObserver(typ_ModuleObserver observer)
{
    typ_ModuleObserver previous = g_observer;
    g_observer = observer;
    return previous;
}

void typ_InitializeModule(const char* module, int& useCount, int& tally, typ_ModuleWork startUp)
{
    const int old = useCount;
    useCount = old + 1;
    if (old != 0)
        return;
    tally += 1;
    if (startUp)
        startUp();
    if (g_observer)
        g_observer(module, true);
}

void typ_FinalizeModule(const char* module, int& useCount, int& tally, typ_ModuleWork tearDown)
{
    const int old = useCount;
    useCount = old - 1;
    if (old != 1)
        return;
    tally -= 1;
    if (g_observer)
        g_observer(module, false);
    if (tearDown)
        tearDown();
}

#include "typ/typ_Initialize.h"

#include "typ/typ_Module.h"
#include "mem/mem_Memory.h"
#include "nex/nex_OutOfMemoryException.h"
#include "nex/nex_TypeTable.h"
#include "typ/typ_DebugFlags.h"

namespace {

int g_useCount = 0;
mem_OutOfMemoryThrower g_previousThrower = nullptr;

void StartUp()
{
    // Allocation failures raise the library's own exception from now on.
    g_previousThrower = mem_SetOutOfMemoryThrower(&nex_ThrowOutOfMemory);
    typ_ArchCompTable::Create();
    typ_DebugFlags::InitializeTables();
    mem_formalize();
}

void TearDown()
{
    typ_ArchCompTable::Destroy();
    mem_SetOutOfMemoryThrower(g_previousThrower);
    g_previousThrower = nullptr;
}

}  // namespace


void typ_initialize(int& count)
{
    typ_InitializeModule("typ", g_useCount, count, &StartUp);
}

void typ_finalize(int& count)
{
    typ_FinalizeModule("typ", g_useCount, count, &TearDown);
}

#include "uti/uti_Initialize.h"

#include "typ/typ_Module.h"
#include "nex/nex_TypeTable.h"

namespace {

int g_useCount = 0;

// Slot 2 of the architecture-compatibility table. The module's classes (the coordinates among
// them) and their metadata come with the modules that build them.
const typ_Entry kUtiTypes[] = {
    {0, typ_none, "uti"},
};

void StartUp()
{
    typ_ArchCompTable::InsertEntry(2, typ_ArchCompEntry(kUtiTypes, sizeof(kUtiTypes) / sizeof(kUtiTypes[0])));
}

}  // namespace


void uti_initialize(int& count)
{
    typ_InitializeModule("uti", g_useCount, count, &StartUp);
}

void uti_finalize(int& count)
{
    typ_FinalizeModule("uti", g_useCount, count, nullptr);
}

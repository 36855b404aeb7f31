#include "cls/cls_Initialize.h"

#include "typ/typ_Module.h"
#include "nex/nex_TypeTable.h"

namespace {

int g_useCount = 0;

// The module's type list (slot 35). Its classes and their metadata come with the class registry.
const typ_Entry kClsTypes[] = {
    {0, typ_none, "cls"},
};

void StartUp()
{
    typ_ArchCompTable::InsertEntry(35, typ_ArchCompEntry(kClsTypes, sizeof(kClsTypes) / sizeof(kClsTypes[0])));
}

}  // namespace


void cls_initialize(int& count)
{
    typ_InitializeModule("cls", g_useCount, count, &StartUp);
}

void cls_finalize(int& count)
{
    typ_FinalizeModule("cls", g_useCount, count, nullptr);
}

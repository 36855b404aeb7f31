#include "cow/cow_Initialize.h"

#include "typ/typ_Module.h"
#include "nex/nex_TypeTable.h"

namespace {

int g_useCount = 0;

// The module's type list (slot 26 of the architecture-compatibility table), by class number.
const typ_Entry kCowTypes[] = {
    {0, typ_none, "cow"},
    {1, typ_obj, "cow_String"},
    {1, typ_obj, "cow_1DArrayList"},
    {1, typ_obj, "cow_List"},
    {1, typ_obj, "cow_Map"},
    {1, typ_obj, "cow_Btree"},
    {1, typ_obj, "cow_CountedHld"},
    {1, 0x1A0006u, "cow_COW"},
};

void StartUp()
{
    typ_ArchCompTable::InsertEntry(26, typ_ArchCompEntry(kCowTypes, sizeof(kCowTypes) / sizeof(kCowTypes[0])));
}

}  // namespace


void cow_initialize(int& count)
{
    typ_InitializeModule("cow", g_useCount, count, &StartUp);
}

void cow_finalize(int& count)
{
    typ_FinalizeModule("cow", g_useCount, count, nullptr);
}

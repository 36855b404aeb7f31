#include "nex/nex_Initialize.h"

#include "typ/typ_Module.h"
#include "nex/nex_OutOfMemoryException.h"
#include "nex/nex_TypeTable.h"

namespace {

int g_useCount = 0;

// Slot 31 of the architecture-compatibility table, by class number.
const typ_Entry kNexTypes[] = {
    {0, typ_none, "nex"},
    {1, typ_obj, "nex_Exception"},
    {1, 0x1F0001u, "nex_TextException"},
    {1, 0x1F0001u, "nex_CommandException"},
    {1, 0x1F0001u, "nex_AssertException"},
    {1, 0x1F0001u, "nex_BadCastException"},
    {1, 0x1F0001u, "nex_ExitException"},
    {1, 0x1F0001u, "nex_InvalidObjException"},
    {1, 0x1F0001u, "nex_SystemErrorException"},
    {1, 0x1F0001u, "nex_OutOfMemoryException"},
};

// Registering the nine classes' metadata comes with the class registry.
void StartUp()
{
    typ_ArchCompTable::InsertEntry(31, typ_ArchCompEntry(kNexTypes, sizeof(kNexTypes) / sizeof(kNexTypes[0])));
    nex_OutOfMemoryException::BuildMessages();
}

void TearDown()
{
    nex_OutOfMemoryException::FreeMessages();
}

}  // namespace


void nex_initialize(int& count)
{
    typ_InitializeModule("nex", g_useCount, count, &StartUp);
}

void nex_finalize(int& count)
{
    typ_FinalizeModule("nex", g_useCount, count, &TearDown);
}

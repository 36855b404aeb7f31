#include "mrm/mrm_Initialize.h"

#include "mrm/mrm_Manager.h"
#include "typ/typ_Module.h"

namespace {

int g_useCount = 0;

void StartUp()
{
    mrm_Manager::RegisterStandardLabelPrinters(mrm_Manager::Instance());
}

// Ends every pool still active and frees the block table with whatever memory it holds.
void TearDown()
{
    mrm_Manager::Finalize();
}

}  // namespace

void mrm_initialize(int& count)
{
    typ_InitializeModule("mrm", g_useCount, count, &StartUp);
}

void mrm_finalize(int& count)
{
    typ_FinalizeModule("mrm", g_useCount, count, &TearDown);
}

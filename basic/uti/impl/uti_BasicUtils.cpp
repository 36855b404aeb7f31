#include "uti/uti_BasicUtils.h"

#include "bio/bio_Initialize.h"
#include "cls/cls_Initialize.h"
#include "cow/cow_Initialize.h"
#include "mrm/mrm_Initialize.h"
#include "nex/nex_Initialize.h"
#include "omi/omi_CoreUtils.h"
#include "pdc/pdc_Initialize.h"
#include "pnt/pnt_Initialize.h"
#include "rgx/rgx_Initialize.h"
#include "thr/thr_Initialize.h"
#include "typ/typ_Initialize.h"
#include "typ/typ_Module.h"
#include "uti/uti_Initialize.h"
#include "utl/utl_Initialize.h"

namespace {

// The library's own count, separate from the uti module's.
int g_useCount = 0;
int* g_tally = nullptr;

typedef void (*ModuleEntry)(int&);
struct Module {
    ModuleEntry up;
    ModuleEntry down;
};

// The fixed start-up order; tear-down runs it backwards.
const Module kModules[] = {
    {&UTI_CoreUtils_initialize, &UTI_CoreUtils_finalize},
    {&typ_initialize, &typ_finalize},
    {&thr_initialize, &thr_finalize},
    {&pnt_initialize, &pnt_finalize},
    {&mrm_initialize, &mrm_finalize},
    {&bio_initialize, &bio_finalize},
    {&cow_initialize, &cow_finalize},
    {&cls_initialize, &cls_finalize},
    {&nex_initialize, &nex_finalize},
    {&rgx_initialize, &rgx_finalize},
    {&pdc_initialize, &pdc_finalize},
    {&utl_initialize, &utl_finalize},
    {&uti_initialize, &uti_finalize},
};
const int kModuleCount = sizeof(kModules) / sizeof(kModules[0]);

void StartAll()
{
    for (int i = 0; i < kModuleCount; ++i)
        kModules[i].up(*g_tally);
}

void StopAll()
{
    for (int i = kModuleCount - 1; i >= 0; --i)
        kModules[i].down(*g_tally);
}

}  // namespace

void UTI_BasicUtils_initialize(int& count)
{
    g_tally = &count;
    typ_InitializeModule("ZULFNDUTI_BasicUtils", g_useCount, count, &StartAll);
    g_tally = nullptr;
}

void UTI_BasicUtils_finalize(int& count)
{
    g_tally = &count;
    typ_FinalizeModule("ZULFNDUTI_BasicUtils", g_useCount, count, &StopAll);
    g_tally = nullptr;
}

void uti_formalize() {}

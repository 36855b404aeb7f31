#include "pnt/pnt_DebugMarks.h"

const char* pnt_DebugStartMark()
{
    return "\n======== ZULFNDUTI debug start ========\n";
}

const char* pnt_DebugEndMark()
{
    return "\n======== ZULFNDUTI debug end ==========\n";
}

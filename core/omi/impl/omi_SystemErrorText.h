// Platform parts of omi_SystemErrorCode (omi_SystemErrorCode_posix/_win32).
#ifndef OMI_SYSTEMERRORTEXT_H
#define OMI_SYSTEMERRORTEXT_H

#include <cstdint>

#include "atr/atr_String.h"

atr_String omi_CrtErrorText(int e);
atr_String omi_NativeErrorText(uint32_t code);

#endif

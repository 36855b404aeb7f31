#include "omi/omi_SystemErrorCode.h"

#include "omi/impl/omi_SystemErrorText.h"

atr_String omi_SystemErrorCode::GetText() const
{
    if (IsCRT())
        return omi_CrtErrorText(static_cast<int>(m_CRTErrorCode));
    return omi_NativeErrorText(m_NativeErrorCode);
}

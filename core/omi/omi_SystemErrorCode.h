/// @class omi_SystemErrorCode
/// omi_SystemErrorCode: an error code with its kind, and its text.
///
/// Two kinds: a native operating-system code (Win32 error on Windows, errno value on POSIX) in
/// m_NativeErrorCode, or a C runtime errno value in m_CRTErrorCode, marked by m_NativeErrorCode ==
/// 0xFFFFFFFF.
///
/// Thread rule: a plain value. LastSystemError reads the calling thread's own error, and GetText
/// may be called from any thread.
#ifndef OMI_SYSTEMERRORCODE_H
#define OMI_SYSTEMERRORCODE_H

#include <cstdint>

#include "atr/atr_String.h"

class ZUL_CORE_API omi_SystemErrorCode {
public:
    static const uint32_t CRT_KIND = 0xFFFFFFFFu;

    omi_SystemErrorCode() : m_NativeErrorCode(0), m_CRTErrorCode(0) {}
    omi_SystemErrorCode(uint32_t native, uint32_t crt = 0) : m_NativeErrorCode(native), m_CRTErrorCode(crt) {}

    /// A runtime errno value.
    static omi_SystemErrorCode FromErrno(int e) { return omi_SystemErrorCode(CRT_KIND, static_cast<uint32_t>(e)); }
    /// The calling thread's last native error: GetLastError() on Windows, errno on POSIX.
    static omi_SystemErrorCode LastSystemError();

    bool IsCRT() const { return m_NativeErrorCode == CRT_KIND; }
    /// The code of its kind.
    uint32_t Code() const { return IsCRT() ? m_CRTErrorCode : m_NativeErrorCode; }

    /// CRT kind: strerror of the value. Native: the system's message (FormatMessageA from the
    /// system table, trailing CR/LF and blanks removed, on Windows; strerror on POSIX). A code
    /// without a message gives "Unknown error <code>".
    atr_String GetText() const;

    bool operator==(const omi_SystemErrorCode& o) const
    {
        return m_NativeErrorCode == o.m_NativeErrorCode && m_CRTErrorCode == o.m_CRTErrorCode;
    }
    bool operator!=(const omi_SystemErrorCode& o) const { return !(*this == o); }

    uint32_t m_NativeErrorCode;
    uint32_t m_CRTErrorCode;
};

#endif

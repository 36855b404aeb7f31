/// @class cow_SystemErrorCode
/// cow_SystemErrorCode: a system error code with its text.
///
/// Two 32-bit unsigned values in this order: the system error code, and a runtime-library errno
/// value that is meaningful only when the code is 0xFFFFFFFF.
/// Thread rule: a plain value; GetText may be called from any thread.
#ifndef COW_SYSTEMERRORCODE_H
#define COW_SYSTEMERRORCODE_H

#include <cstdint>

#include "cow/cow_String.h"
#include "zul_BasicExport.h"

class ZUL_BASIC_API cow_SystemErrorCode {
public:
    /// The code that marks a runtime-library errno value.
    enum : uint32_t { RuntimeErrno = 0xFFFFFFFFu };

    cow_SystemErrorCode() : m_code(0), m_errno(0) {}
    explicit cow_SystemErrorCode(uint32_t code, uint32_t errnoValue = 0) : m_code(code), m_errno(errnoValue) {}
    /// A runtime-library error: the code is 0xFFFFFFFF and the errno value is kept.
    static cow_SystemErrorCode FromErrno(int errnoValue)
    {
        return cow_SystemErrorCode(RuntimeErrno, static_cast<uint32_t>(errnoValue));
    }

    uint32_t Code() const { return m_code; }
    uint32_t Errno() const { return m_errno; }

    /// The runtime's strerror text when the code is 0xFFFFFFFF; for a Windows Sockets error of the
    /// library's table "NAME (code) Message."; otherwise the system's own message for the code
    /// (FormatMessageA on Windows, strerror on POSIX systems, whose codes are errno values).
    cow_String GetText() const;

private:
    uint32_t m_code;
    uint32_t m_errno;
};

#endif

#include <windows.h>

#include <cstring>

#include "omi/omi_SystemErrorCode.h"
#include "omi/impl/omi_SystemErrorText.h"

atr_String omi_CrtErrorText(int e)
{
    const char* t = std::strerror(e);
    if (!t || !*t)
        return atr_String::Format("Unknown error %d", e);
    return atr_String(t);
}

atr_String omi_NativeErrorText(uint32_t code)
{
    char* buffer = nullptr;
    // FORMAT_MESSAGE_ALLOCATE_BUFFER | FROM_SYSTEM | IGNORE_INSERTS (0x1300), user-default language.
    const DWORD n = FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                   nullptr, code, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT),
                                   reinterpret_cast<LPSTR>(&buffer), 1024, nullptr);
    if (n == 0 || !buffer) {
        if (buffer)
            LocalFree(buffer);
        return atr_String::Format("Unknown error %u", static_cast<unsigned>(code));
    }
    atr_String text;
    try {
        text = atr_String(buffer, static_cast<int>(n));
    } catch (...) {
        LocalFree(buffer);
        throw;
    }
    LocalFree(buffer);
    text.RightTrim(" \r\n");
    return text;
}

omi_SystemErrorCode omi_SystemErrorCode::LastSystemError() { return omi_SystemErrorCode(static_cast<uint32_t>(GetLastError()), 0); }

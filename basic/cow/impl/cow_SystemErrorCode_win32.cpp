#include "cow/cow_SystemErrorCode.h"
#include "cow/impl/cow_SystemMessageText.h"

#include <windows.h>

cow_String cow_SystemMessageText(uint32_t code)
{
    char* buffer = nullptr;
    const DWORD flags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    const DWORD n = FormatMessageA(flags, nullptr, code, 0x400, reinterpret_cast<char*>(&buffer), 1024, nullptr);
    if (!buffer)
        return cow_String();
    try {
        cow_String text(buffer, static_cast<int>(n));
        LocalFree(buffer);
        return text;
    } catch (...) {
        LocalFree(buffer);
        throw;
    }
}

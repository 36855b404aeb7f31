#include <cerrno>
#include <cstring>

#include "omi/omi_SystemErrorCode.h"
#include "omi/impl/omi_SystemErrorText.h"

namespace {

// strerror_r has two forms; the overloads pick whichever the C library declares.
[[maybe_unused]] const char* Pick(int rc, const char* buf) { return rc == 0 ? buf : nullptr; }
[[maybe_unused]] const char* Pick(const char* r, const char*) { return r; }

}  // namespace

atr_String omi_CrtErrorText(int e)
{
    char buf[256];
    buf[0] = '\0';
    const char* t = Pick(strerror_r(e, buf, sizeof buf), buf);
    if (!t || !*t)
        return atr_String::Format("Unknown error %d", e);
    return atr_String(t);
}

// On POSIX the native codes are errno values.
atr_String omi_NativeErrorText(uint32_t code) { return omi_CrtErrorText(static_cast<int>(code)); }

omi_SystemErrorCode omi_SystemErrorCode::LastSystemError() { return omi_SystemErrorCode(static_cast<uint32_t>(errno), 0); }

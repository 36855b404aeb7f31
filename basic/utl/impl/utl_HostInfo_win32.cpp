#include "utl/utl_HostInfo.h"
#include "utl/impl/utl_HostInfoPlatform.h"

#include <windows.h>

namespace utl_HostInfoPlatform {

bool LocalTime(std::tm& out)
{
    const std::time_t now = std::time(nullptr);
    return localtime_s(&out, &now) == 0;
}

}  // namespace utl_HostInfoPlatform

cow_String utl_getUserName()
{
    char buffer[257];
    DWORD size = sizeof(buffer);
    if (!GetUserNameA(buffer, &size))
        return cow_String();
    buffer[256] = '\0';
    return cow_String(buffer);
}

cow_String utl_getPlatform()
{
    return cow_String("win86_64");
}

int utl_getNumberCpus()
{
    SYSTEM_INFO info;
    GetSystemInfo(&info);
    return info.dwNumberOfProcessors < 1 ? 1 : static_cast<int>(info.dwNumberOfProcessors);
}

int utl_getCpusClockSpeed()
{
    HKEY key;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, "HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0", 0, KEY_READ, &key) !=
        ERROR_SUCCESS)
        return -1;
    int mhz = -1;
    const char* const names[] = {"~MHz", "~Mhz", "~mhz"};
    for (const char* name : names) {
        DWORD value = 0, type = 0, size = sizeof(value);
        if (RegQueryValueExA(key, name, nullptr, &type, reinterpret_cast<BYTE*>(&value), &size) == ERROR_SUCCESS &&
            type == REG_DWORD) {
            mhz = static_cast<int>(value);
            break;
        }
    }
    RegCloseKey(key);
    return mhz;
}

#include "utl/utl_HostInfo.h"
#include "utl/impl/utl_HostInfoPlatform.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <pwd.h>
#include <time.h>
#include <unistd.h>
#include <vector>

namespace utl_HostInfoPlatform {

bool LocalTime(std::tm& out)
{
    const std::time_t now = std::time(nullptr);
    return localtime_r(&now, &out) != nullptr;
}

}  // namespace utl_HostInfoPlatform

cow_String utl_getUserName()
{
    long size = sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(size > 0 ? static_cast<size_t>(size) : 16384);
    struct passwd entry;
    struct passwd* found = nullptr;
    if (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found && found->pw_name)
        return cow_String(found->pw_name);
    return cow_String();
}

cow_String utl_getPlatform()
{
    return cow_String("lnx86_64");
}

int utl_getNumberCpus()
{
    const long n = sysconf(_SC_NPROCESSORS_ONLN);
    return n < 1 ? 1 : static_cast<int>(n);
}

// "cpu MHz : 2893.202" of the first processor in /proc/cpuinfo.
int utl_getCpusClockSpeed()
{
    std::FILE* f = std::fopen("/proc/cpuinfo", "r");
    if (!f)
        return -1;
    int mhz = -1;
    char line[512];
    while (std::fgets(line, sizeof(line), f)) {
        if (std::strncmp(line, "cpu MHz", 7) != 0)
            continue;
        const char* colon = std::strchr(line, ':');
        if (colon) {
            char* end = nullptr;
            const double value = std::strtod(colon + 1, &end);
            if (end != colon + 1 && value > 0 && value < 1e6)
                mhz = static_cast<int>(std::lround(value));
        }
        break;
    }
    std::fclose(f);
    return mhz;
}

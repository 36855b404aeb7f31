// host: facts about the machine and the process.
#include <cstdio>

#include "utl/utl_HostInfo.h"
#include "zulutil.h"

int zulutil_Host(const zulutil_Args&)
{
    char vendor[16] = {0};
    char model[49] = {0};
    utl_getVendorId(vendor);
    utl_getProcessorModel(model);
    const int mhz = utl_getCpusClockSpeed();
    std::printf("date        %s\n", utl_getDate().c_str());
    std::printf("time        %s\n", utl_getTime().c_str());
    std::printf("host        %s\n", utl_getHostName().c_str());
    std::printf("user        %s\n", utl_getUserName().c_str());
    std::printf("platform    %s\n", utl_getPlatform().c_str());
    std::printf("processors  %d\n", utl_getNumberCpus());
    if (mhz > 0)
        std::printf("clock       %d MHz\n", mhz);
    else
        std::printf("clock       unknown\n");
    std::printf("vendor      %s\n", vendor);
    std::printf("model       %s\n", model);
    std::printf("sse3        %s\n", utl_hasSSE3support() ? "yes" : "no");
    return zulutil_Ok;
}

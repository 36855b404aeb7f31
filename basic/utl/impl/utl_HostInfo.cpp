#include "utl/utl_HostInfo.h"

#include <cstring>
#include <ctime>

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#endif

#include "sys/impl/sys_Os.h"
#include "utl/impl/utl_HostInfoPlatform.h"

namespace {

// Registers EAX, EBX, ECX, EDX of a processor-identification leaf (zeros where there is none).
void Cpuid(unsigned leaf, unsigned (&r)[4])
{
    r[0] = r[1] = r[2] = r[3] = 0;
#if defined(__x86_64__) || defined(__i386__)
    const unsigned highest = __get_cpuid_max(leaf & 0x80000000u, nullptr);
    if (highest >= leaf)
        __cpuid(leaf, r[0], r[1], r[2], r[3]);
#else
    (void)leaf;
#endif
}

cow_String FormatNow(const char* format)
{
    std::tm now;
    char buffer[128];
    if (!utl_HostInfoPlatform::LocalTime(now) || std::strftime(buffer, 127, format, &now) == 0)
        return cow_String();
    return cow_String(buffer);
}

bool VendorIs(const char* name)
{
    char vendor[16];
    utl_getVendorId(vendor);
    return std::strcmp(vendor, name) == 0;
}

}  // namespace

cow_String utl_getHostName()
{
    cow_String name;
    uint32_t error = 0;
    return sys_HostName(name, error) ? name : cow_String();
}

cow_String utl_getcwd()
{
    cow_String directory;
    uint32_t error = 0;
    return sys_CurrentDirectory(directory, error) ? directory : cow_String();
}

cow_String utl_getDate()
{
    return FormatNow("%d-%b-%Y");
}

cow_String utl_getTime()
{
    return FormatNow("%H:%M:%S");
}

void utl_getVendorId(char* result)
{
    unsigned r[4];
    Cpuid(0, r);
    std::memset(result, 0, 16);
    std::memcpy(result, &r[1], 4);  // EBX, EDX, ECX
    std::memcpy(result + 4, &r[3], 4);
    std::memcpy(result + 8, &r[2], 4);
}

void utl_getProcessorModel(char* result)
{
    for (unsigned i = 0; i < 3; ++i) {
        unsigned r[4];
        Cpuid(0x80000002u + i, r);
        std::memcpy(result + 16 * i, r, 16);
    }
}

int utl_isIntelCore()
{
    return VendorIs("GenuineIntel") ? 1 : 0;
}

int utl_isAMDCore()
{
    return VendorIs("AuthenticAMD") ? 1 : 0;
}

int utl_isP4Compat()
{
    return 1;
}

int utl_hasSSEsupport()
{
    return 1;
}

int utl_hasSSE2support()
{
    return 1;
}

int utl_hasSSE3support()
{
    unsigned r[4];
    Cpuid(1, r);
    return static_cast<int>(r[2] & 1u);
}

int utl_has3DNOWsupport()
{
    return utl_isAMDCore();
}

int utl_sleep(unsigned int milliseconds)
{
    sys_SleepMilliseconds(milliseconds);
    return 1;
}

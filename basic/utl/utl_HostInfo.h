/// @file
/// Facts about the host, the processor and the process, and a sleep. None of them throws: a fact
/// that cannot be read shows as an empty string or -1.
///
/// Sources by platform: Windows answers from the socket layer (host name), GetUserNameA, the
/// system information and the registry (clock speed); POSIX systems from gethostname, the
/// password database, sysconf and /proc/cpuinfo ("cpu MHz" of the first processor). The processor
/// identification comes from the cpuid instruction on both.
///
/// Thread rule: every function may be called from any thread. utl_getcwd answers the current
/// directory of the moment, utl_getDate and utl_getTime use the time zone as the process has it.
#ifndef UTL_HOSTINFO_H
#define UTL_HOSTINFO_H

#include "cow/cow_String.h"
#include "zul_BasicExport.h"

/// The local date as "%d-%b-%Y" (for example "07-Mar-2026") and time as "%H:%M:%S".
///@{
ZUL_BASIC_API cow_String utl_getDate();
ZUL_BASIC_API cow_String utl_getTime();
///@}
/// Empty when the name cannot be read.
ZUL_BASIC_API cow_String utl_getHostName();
ZUL_BASIC_API cow_String utl_getUserName();
ZUL_BASIC_API cow_String utl_getcwd();
/// "win86_64" on Windows, "lnx86_64" on Linux.
ZUL_BASIC_API cow_String utl_getPlatform();

/// At least 1.
ZUL_BASIC_API int utl_getNumberCpus();
/// MHz of the first processor, -1 when unknown.
ZUL_BASIC_API int utl_getCpusClockSpeed();

/// The 12-character vendor text and a zero; `result` holds at least 16 bytes (the rest is zeroed).
ZUL_BASIC_API void utl_getVendorId(char* result);
/// The 48-byte brand text; `result` holds at least 48 bytes.
ZUL_BASIC_API void utl_getProcessorModel(char* result);
/// 1 when the vendor text is "GenuineIntel" / "AuthenticAMD", else 0.
///@{
ZUL_BASIC_API int utl_isIntelCore();
ZUL_BASIC_API int utl_isAMDCore();
///@}
/// Always 1: every processor that runs this 64-bit library has them.
///@{
ZUL_BASIC_API int utl_isP4Compat();
ZUL_BASIC_API int utl_hasSSEsupport();
ZUL_BASIC_API int utl_hasSSE2support();
///@}
/// Bit 0 of ECX of processor-identification leaf 1.
ZUL_BASIC_API int utl_hasSSE3support();
/// The same as utl_isAMDCore().
ZUL_BASIC_API int utl_has3DNOWsupport();

/// Sleeps for the given time; returns 1.
ZUL_BASIC_API int utl_sleep(unsigned int milliseconds);

#endif

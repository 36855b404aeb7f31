/// @file
/// Export macro of ZULFNDUTI_CoreUtils.
#ifndef ZUL_COREEXPORT_H
#define ZUL_COREEXPORT_H

#if defined(_WIN32)
#  if defined(ZUL_BUILDING_CORE)
#    define ZUL_CORE_API __declspec(dllexport)
#  else
#    define ZUL_CORE_API __declspec(dllimport)
#  endif
#else
#  define ZUL_CORE_API __attribute__((visibility("default")))
#endif

#endif

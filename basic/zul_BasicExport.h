/// @file
/// Export macro of ZULFNDUTI_BasicUtils.
#ifndef ZUL_BASICEXPORT_H
#define ZUL_BASICEXPORT_H

#if defined(_WIN32)
#  if defined(ZUL_BUILDING_BASIC)
#    define ZUL_BASIC_API __declspec(dllexport)
#  else
#    define ZUL_BASIC_API __declspec(dllimport)
#  endif
#else
#  define ZUL_BASIC_API __attribute__((visibility("default")))
#endif

#endif

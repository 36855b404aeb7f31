/// @file
/// Compiler idioms for the public headers, each with a fallback for compilers that lack it, so
/// that the headers compile for any client compiler:
/// @code{.unparsed}
///   ZUL_LIKELY(x), ZUL_UNLIKELY(x)   a branch hint; (x) as a bool where there is none
///   ZUL_PRINTF_FORMAT(f, a)          a printf-format check of parameter f with the arguments
///                                    from parameter a (1-based, counting `this`); nothing where
///                                    there is none
///   ZUL_PREFETCH(p)                  a hint to start loading the memory at p; nothing where
///                                    there is none
///   ZUL_COLD                         before a function: called rarely, never inlined, so that
///                                    a hot caller keeps its registers; nothing where there is none
///   zul_CountLeadingZeros32(v)       the number of zero bits above the highest set bit of a
///                                    nonzero 32-bit value (31 for 1); v must not be 0
/// @endcode
#ifndef ZUL_COMPILER_H
#define ZUL_COMPILER_H

#include <cstdint>

#if defined(_MSC_VER) && !defined(__clang__)
#include <intrin.h>
#endif

#if defined(__GNUC__) || defined(__clang__)
#define ZUL_LIKELY(x) __builtin_expect(static_cast<bool>(x), 1)
#define ZUL_UNLIKELY(x) __builtin_expect(static_cast<bool>(x), 0)
#define ZUL_PRINTF_FORMAT(f, a) __attribute__((format(printf, f, a)))
#define ZUL_PREFETCH(p) __builtin_prefetch(p)
#define ZUL_COLD __attribute__((noinline, cold))
#else
#define ZUL_LIKELY(x) static_cast<bool>(x)
#define ZUL_UNLIKELY(x) static_cast<bool>(x)
#define ZUL_PRINTF_FORMAT(f, a)
#define ZUL_PREFETCH(p) static_cast<void>(p)
#if defined(_MSC_VER)
#define ZUL_COLD __declspec(noinline)
#else
#define ZUL_COLD
#endif
#endif

/// The loop that every compiler can run: the position of the highest set bit, counted down.
inline int zul_CountLeadingZeros32Portable(uint32_t v)
{
    int n = 0;
    for (uint32_t bit = 0x80000000u; bit != 0 && (v & bit) == 0; bit >>= 1)
        ++n;
    return n;
}

inline int zul_CountLeadingZeros32(uint32_t v)
{
#if defined(__GNUC__) || defined(__clang__)
    return __builtin_clz(v);
#elif defined(_MSC_VER)
    unsigned long index = 0;
    _BitScanReverse(&index, v);
    return 31 - static_cast<int>(index);
#else
    return zul_CountLeadingZeros32Portable(v);
#endif
}

#endif

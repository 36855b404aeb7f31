// The main of the benchmark programs: the library is brought up around the run, as a client
// would do it.
#ifndef ZUL_BENCHMAIN_H
#define ZUL_BENCHMAIN_H

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <cstdint>
#include <vector>

#include "uti/uti_BasicUtils.h"

// Reproducible pseudo-random bytes, the same in every run, so that a library figure and its
// anchor work on the same input.
inline std::vector<unsigned char> zul_BenchRandomBytes(size_t n, uint32_t seed = 11)
{
    std::vector<unsigned char> data(n);
    for (unsigned char& c : data) {
        seed = seed * 1103515245u + 12345u;
        c = static_cast<unsigned char>(seed >> 16);
    }
    return data;
}

// The runtime heap in the state of a program that keeps using it: blocks of up to 32 MiB come
// from the heap rather than from fresh mappings, and freed memory is not handed back to the
// system after every iteration. Left to its defaults, glibc's heap would, depending on what
// earlier cases left in it, make an anchor pay a page fault per 4 KiB on some runs and not on
// others (std::vector appends swung tenfold that way).
inline void zul_BenchSteadyHeap()
{
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
}

inline int zul_BenchMain(int argc, char** argv)
{
    zul_BenchSteadyHeap();
    int count = 0;
    UTI_BasicUtils_initialize(count);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    UTI_BasicUtils_finalize(count);
    return 0;
}

#endif

// The main of the benchmark programs: the library is brought up around the run, as a client
// would do it.
#ifndef ZUL_BENCHMAIN_H
#define ZUL_BENCHMAIN_H

#include <benchmark/benchmark.h>

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

inline int zul_BenchMain(int argc, char** argv)
{
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

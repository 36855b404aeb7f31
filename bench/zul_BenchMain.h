// The main of the benchmark programs: the library is brought up around the run, as a client
// would do it.
#ifndef ZUL_BENCHMAIN_H
#define ZUL_BENCHMAIN_H

#include <benchmark/benchmark.h>

#include "uti/uti_BasicUtils.h"

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

#include "utl/utl_CommandLine.h"

#include <stdlib.h>

// The C runtime's own split of the command line.
cow_1DArrayList<cow_String> utl_ProcessArguments()
{
    cow_1DArrayList<cow_String> args;
    for (int i = 0; i < __argc; ++i)
        args.Append(cow_String(__argv[i] ? __argv[i] : ""));
    return args;
}

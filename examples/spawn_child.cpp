// A child process with its standard output redirected to a file (uti_Spawn, uti_Redirection).
// The program starts itself again as the child (first argument "child"), so it needs no other
// program on any platform. The output file spawn_child.out in the current directory is removed
// at the end.
//
// Output:
// | child's output:
// |   child: 2 arguments
// |   child: argument 1 = "two words"
// |   child: argument 2 = "plain"
// | child's exit status: 3
#include <fcntl.h>
#if defined(_WIN32)
#include <io.h>
#endif

#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

#include "ZULFNDUTI_BasicUtils.h"

#ifndef O_BINARY
#define O_BINARY 0  // only Windows tells text from binary descriptors
#endif

namespace {

int RunAsChild(int argc, char** argv)
{
    std::printf("child: %d arguments\n", argc - 2);
    for (int i = 2; i < argc; ++i)
        std::printf("child: argument %d = \"%s\"\n", i - 1, argv[i]);
    return 3;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc > 1 && std::strcmp(argv[1], "child") == 0)
        return RunAsChild(argc, argv);

    int count = 0;
    UTI_BasicUtils_initialize(count);
    const char* const outputFile = "spawn_child.out";
    int status = 0;
    try {
        // Redirection takes runtime-library descriptors; starting the child hands the descriptor
        // over and closes it in this process. Entries of -1 inherit this process's streams.
        const int output = open(outputFile, O_WRONLY | O_CREAT | O_TRUNC | O_BINARY, 0644);
        if (output < 0)
            nex_TextException("cannot create spawn_child.out").Throw(__FILE__, __LINE__);
        uti_Redirection redirection(-1, output, -1);

        // Each argument reaches the child as one argument, blanks and all.
        cow_1DArrayList<cow_String> arguments;
        arguments.Append("child");
        arguments.Append("two words");
        arguments.Append("plain");

        uti_Spawn child;
        child.Start(argv[0], arguments, redirection);
        const int exitStatus = child.Reap(0);  // 0: wait as long as it takes

        std::printf("child's output:\n");
        std::ifstream said(outputFile);  // text mode: Windows line ends read as "\n"
        for (std::string line; std::getline(said, line);)
            std::printf("  %s\n", line.c_str());
        said.close();
        std::printf("child's exit status: %d\n", exitStatus);
    } catch (const nex_Exception& e) {
        std::fprintf(stderr, "failed: %s\n", e.UserReport().c_str());
        status = 1;
    }
    std::remove(outputFile);
    UTI_BasicUtils_finalize(count);
    return status;
}

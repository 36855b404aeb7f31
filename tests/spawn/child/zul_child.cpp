// The child program of the spawn tests. The first argument picks what it does:
//   args           prints each further argument as "<length>:<text>" on a line of its own
//   env NAME...    prints "NAME=value" or "NAME unset" for each name
//   environ        prints its whole environment, one entry per line, in table order
//   cat            copies its standard input to its standard output
//   mixed          writes "out1", then "err" to the error stream, then "out2", flushing each
//   exit N         ends with status N
//   sleep MS       sleeps, then ends with status 0
//   lock PATH OP   opens PATH for reading and writing and calls utl_flock with OP; ends with 0 when
//                  the lock was granted, 1 when refused
//   msf-write PATH LETTER SECTIONS BYTES
//                  rewrites the container PATH (opened for update) with SECTIONS sections of
//                  BYTES copies of LETTER each, and saves
//   msf-count PATH MS
//                  for MS milliseconds: opens the container PATH for update, adds 1 to the
//                  decimal number in its section "counter", saves; prints "<updates> <refusals>
//                  <other failures>", refusals being failures with the lock message
//   msf-hold PATH  opens the container PATH for update (taking its lock), prints "ready" and
//                  waits until it is killed
// Without arguments it ends with status 7.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <fcntl.h>
#include <thread>

#include "nex/nex_Exception.h"

#if defined(_WIN32)
#include <io.h>
#define zul_open _open
#define zul_environ _environ
#else
#include <unistd.h>
#define zul_open open
extern char** environ;
#define zul_environ environ
#endif

#include "uti/uti_BasicUtils.h"
#include "utl/utl_FileLock.h"
#include "utl/utl_MultisectionFile.h"

int main(int argc, char** argv)
{
#if defined(_WIN32)
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
#endif
    if (argc < 2)
        return 7;
    const char* mode = argv[1];
    if (!std::strcmp(mode, "args")) {
        for (int i = 2; i < argc; ++i)
            std::printf("%d:%s\n", static_cast<int>(std::strlen(argv[i])), argv[i]);
    } else if (!std::strcmp(mode, "env")) {
        for (int i = 2; i < argc; ++i) {
            const char* value = std::getenv(argv[i]);
            if (value)
                std::printf("%s=%s\n", argv[i], value);
            else
                std::printf("%s unset\n", argv[i]);
        }
    } else if (!std::strcmp(mode, "environ")) {
        for (char** e = zul_environ; e && *e; ++e)
            std::printf("%s\n", *e);
    } else if (!std::strcmp(mode, "cat")) {
        char buffer[4096];
        size_t n;
        while ((n = std::fread(buffer, 1, sizeof(buffer), stdin)) > 0)
            std::fwrite(buffer, 1, n, stdout);
    } else if (!std::strcmp(mode, "mixed")) {
        std::fputs("out1\n", stdout);
        std::fflush(stdout);
        std::fputs("err\n", stderr);
        std::fflush(stderr);
        std::fputs("out2\n", stdout);
    } else if (!std::strcmp(mode, "exit") && argc > 2) {
        return std::atoi(argv[2]);
    } else if (!std::strcmp(mode, "sleep") && argc > 2) {
        std::this_thread::sleep_for(std::chrono::milliseconds(std::atoi(argv[2])));
    } else if (!std::strcmp(mode, "lock") && argc > 3) {
        int count = 0;
        UTI_BasicUtils_initialize(count);
        const int fd = zul_open(argv[2], O_RDWR);
        const int rc = fd < 0 ? -1 : utl_flock(fd, std::atoi(argv[3]));
        UTI_BasicUtils_finalize(count);
        return rc == 0 ? 0 : 1;
    } else if (!std::strcmp(mode, "msf-write") && argc > 5) {
        int count = 0;
        UTI_BasicUtils_initialize(count);
        {
            utl_MultisectionFile f(argv[2], utl_FileAccessUpdate);
            const int sections = std::atoi(argv[4]);
            const std::string data(static_cast<size_t>(std::atoi(argv[5])), argv[3][0]);
            for (int i = 0; i < sections; ++i)
                f.setSectionData(("section" + std::to_string(i)).c_str(), data.data(), static_cast<int>(data.size()));
            f.saveChanges();
        }
        UTI_BasicUtils_finalize(count);
    } else if (!std::strcmp(mode, "msf-count") && argc > 3) {
        int count = 0;
        UTI_BasicUtils_initialize(count);
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(std::atoi(argv[3]));
        long updates = 0, refusals = 0, others = 0;
        while (std::chrono::steady_clock::now() < end) {
            try {
                utl_MultisectionFile f(argv[2], utl_FileAccessUpdate);
                std::string text(static_cast<size_t>(f.getSectionLength("counter")), '\0');
                f.getSectionData("counter", &text[0]);
                const std::string next = std::to_string(std::atol(text.c_str()) + 1);
                f.setSectionData("counter", next.data(), static_cast<int>(next.size()));
                f.saveChanges();
                ++updates;
            } catch (const nex_Exception& e) {
                if (e.UserReport().EndsWith("Cannot create the lock file."))
                    ++refusals;
                else {
                    ++others;
                    std::fprintf(stderr, "%s\n", e.UserReport().c_str());
                }
            }
        }
        std::printf("%ld %ld %ld\n", updates, refusals, others);
        std::fflush(stdout);
        UTI_BasicUtils_finalize(count);
    } else if (!std::strcmp(mode, "msf-hold") && argc > 2) {
        int count = 0;
        UTI_BasicUtils_initialize(count);
        utl_MultisectionFile f(argv[2], utl_FileAccessUpdate);
        std::puts("ready");
        std::fflush(stdout);
        for (;;)
            std::this_thread::sleep_for(std::chrono::seconds(1));
    } else {
        return 99;
    }
    std::fflush(stdout);
    return 0;
}

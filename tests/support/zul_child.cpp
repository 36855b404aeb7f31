// The child program of the tests that start processes (tests/uti, tests/utl, tests/stress). The
// first argument picks what it does:
//   args           prints each further argument as "<length>:<text>" on a line of its own
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
// Without arguments it ends with status 7; with an unknown mode, 99.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

#include "nex/nex_Exception.h"
#include "uti/uti_BasicUtils.h"
#include "utl/utl_FileLock.h"
#include "utl/utl_MultisectionFile.h"
#include "zul_TestSupport.h"

namespace {

// The library brought up for the modes that use it, and down at the end.
struct Library {
    int count = 0;
    Library() { UTI_BasicUtils_initialize(count); }
    ~Library() { UTI_BasicUtils_finalize(count); }
};

int Lock(const char* path, int operation)
{
    Library library;
    const int fd = zul_test::OpenForUpdate(path);
    return fd >= 0 && utl_flock(fd, operation) == 0 ? 0 : 1;
}

void Write(const char* path, char letter, int sections, size_t bytes)
{
    Library library;
    utl_MultisectionFile f(path, utl_FileAccessUpdate);
    const std::string data(bytes, letter);
    for (int i = 0; i < sections; ++i)
        f.setSectionData(("section" + std::to_string(i)).c_str(), data.data(), static_cast<int>(data.size()));
    f.saveChanges();
}

void Count(const char* path, int ms)
{
    Library library;
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
    long updates = 0, refusals = 0, others = 0;
    while (std::chrono::steady_clock::now() < end) {
        try {
            utl_MultisectionFile f(path, utl_FileAccessUpdate);
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
}

[[noreturn]] void Hold(const char* path)
{
    Library library;
    utl_MultisectionFile f(path, utl_FileAccessUpdate);
    std::puts("ready");
    std::fflush(stdout);
    for (;;)
        std::this_thread::sleep_for(std::chrono::seconds(1));
}

}  // namespace

int main(int argc, char** argv)
{
    zul_test::BinaryStandardStreams();
    if (argc < 2)
        return 7;
    const std::string mode = argv[1];
    if (mode == "args") {
        for (int i = 2; i < argc; ++i)
            std::printf("%d:%s\n", static_cast<int>(std::strlen(argv[i])), argv[i]);
    } else if (mode == "environ") {
        for (char** e = zul_test::EnvironmentTable(); e && *e; ++e)
            std::printf("%s\n", *e);
    } else if (mode == "cat") {
        char buffer[4096];
        size_t n;
        while ((n = std::fread(buffer, 1, sizeof(buffer), stdin)) > 0)
            std::fwrite(buffer, 1, n, stdout);
    } else if (mode == "mixed") {
        std::fputs("out1\n", stdout);
        std::fflush(stdout);
        std::fputs("err\n", stderr);
        std::fflush(stderr);
        std::fputs("out2\n", stdout);
    } else if (mode == "exit" && argc > 2) {
        return std::atoi(argv[2]);
    } else if (mode == "sleep" && argc > 2) {
        std::this_thread::sleep_for(std::chrono::milliseconds(std::atoi(argv[2])));
    } else if (mode == "lock" && argc > 3) {
        return Lock(argv[2], std::atoi(argv[3]));
    } else if (mode == "msf-write" && argc > 5) {
        Write(argv[2], argv[3][0], std::atoi(argv[4]), static_cast<size_t>(std::atoi(argv[5])));
    } else if (mode == "msf-count" && argc > 3) {
        Count(argv[2], std::atoi(argv[3]));
    } else if (mode == "msf-hold" && argc > 2) {
        Hold(argv[2]);
    } else {
        return 99;
    }
    std::fflush(stdout);
    return 0;
}

#include "utl/utl_CommandLine.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

// /proc/self/cmdline holds the arguments, each ended by a zero byte.
cow_1DArrayList<cow_String> utl_ProcessArguments()
{
    cow_1DArrayList<cow_String> args;
    const int fd = ::open("/proc/self/cmdline", O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return args;
    // An argument may span reads: collect its pieces until its zero byte.
    cow_String current;
    bool pending = false;
    char buffer[4096];
    for (;;) {
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        int start = 0;
        for (int i = 0; i < n; ++i) {
            if (buffer[i] == '\0') {
                current.append(buffer + start, i - start);
                args.Append(current);
                current = cow_String();
                pending = false;
                start = i + 1;
            }
        }
        if (start < n) {
            current.append(buffer + start, static_cast<int>(n) - start);
            pending = true;
        }
    }
    ::close(fd);
    if (pending)
        args.Append(current);
    return args;
}

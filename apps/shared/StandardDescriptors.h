#pragma once

#include <fcntl.h>
#include <unistd.h>

namespace apps {

/// Opens every closed standard descriptor on /dev/null, so that no data file is opened under that
/// number and receives output or log lines. Call this first in main.
inline void openStandardDescriptors() {
    // open() takes the lowest free descriptor. The access modes are swapped, so that reading
    // standard input and writing the others still fail.
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(descriptor, F_GETFD) < 0) [[maybe_unused]]
            const int opened =
                ::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

} // namespace apps

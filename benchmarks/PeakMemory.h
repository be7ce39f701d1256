#pragma once

#include <fstream>
#include <string>

/// Returns the peak memory of this process in KiB, or 0 if it is unknown. Unlike that of getrusage,
/// the figure does not include the peak of the parent process before exec.
inline long peakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmHWM:"))
            return std::stol(line.substr(6));
    return 0;
}

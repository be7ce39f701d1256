#pragma once

#include <fstream>
#include <string>

/// Of this process, in KiB. What getrusage gives begins with the peak of the program that started
/// this one.
inline long peakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmHWM:"))
            return std::stol(line.substr(6));
    return 0;
}

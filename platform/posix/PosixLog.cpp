#include "platform/Defaults.h"
#include "platform/Log.h"
#include "platform/posix/CopyFile.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <initializer_list>
#include <new>
#include <string>
#include <unistd.h>

namespace platform::posix {
namespace {

std::array<char, 128> header() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    std::tm local{};
    localtime_r(&now.tv_sec, &local);
    std::array<char, 32> time{};
    std::strftime(time.data(), time.size(), "%F %T", &local);
    std::array<char, 128> text{};
    std::snprintf(text.data(), text.size(), "%s.%03ld %s[%d] ", time.data(),
                  now.tv_nsec / 1'000'000, program_invocation_short_name, getpid());
    return text;
}

void writeParts(std::initializer_list<std::string_view> parts) {
    for (const std::string_view part : parts)
        writeAll(STDERR_FILENO, part, systemCalls());
}

/// Writes each line to standard error in one call, so that lines of several threads do not mix.
class StandardErrorLog final : public Log {
    void write(std::string_view line) override {
        const auto start = header();
        try {
            writeParts({std::string(start.data()).append(line).append("\n")});
        } catch (const std::bad_alloc&) {
            writeParts({start.data(), line, "\n"});
        }
    }

    void beep() override {
        if (isatty(STDERR_FILENO)) [[maybe_unused]]
            const auto ignored = ::write(STDERR_FILENO, "\a", 1);
    }
};

} // namespace
} // namespace platform::posix

platform::Log& platform::defaults::log() {
    static posix::StandardErrorLog log;
    return log;
}

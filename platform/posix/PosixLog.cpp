#include "platform/Defaults.h"
#include "platform/Log.h"
#include "platform/posix/CopyFile.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <unistd.h>

namespace platform::posix {
namespace {

std::string header() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    std::tm local{};
    localtime_r(&now.tv_sec, &local);
    std::array<char, 32> time{};
    std::strftime(time.data(), time.size(), "%F %T", &local);
    std::array<char, 128> text{};
    std::snprintf(text.data(), text.size(), "%s.%03ld %s[%d] ", time.data(),
                  now.tv_nsec / 1'000'000, program_invocation_short_name, getpid());
    return text.data();
}

/// Writes each line to standard error in one call, so that lines of several threads do not mix.
class StandardErrorLog final : public Log {
    void write(std::string_view line) override {
        writeAll(STDERR_FILENO, header() + std::string(line) + '\n', systemCalls());
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

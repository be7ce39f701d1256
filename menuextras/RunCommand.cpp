#include "menuextras/RunCommand.h"

#include "platform/Log.h"
#include "platform/Operation.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>

namespace {

struct ClosePipe {
    void operator()(std::FILE* pipe) const { ::pclose(pipe); }
};
using Pipe = std::unique_ptr<std::FILE, ClosePipe>;

Pipe openPipe(const std::string& command) {
    // "e" (close on exec): processes started by other threads do not keep the pipe open.
    Pipe pipe(::popen(command.c_str(), "re"));
    if (!pipe) {
        platform::logLine("Error opening pipe: %@", command);
        platform::systemLog().beep();
    }
    return pipe;
}

bool isAscii(const std::string& text) {
    return std::ranges::all_of(text, [](unsigned char byte) { return byte < 0x80; });
}

} // namespace

void HalvexRunCommand::HalvexRunNoOutput(const std::string& command) {
    openPipe(command).reset();
}

std::optional<std::string> HalvexRunCommand::HalvexUtilGetPipeData(const std::string& command) {
    return platform::guardedOperation([&]() -> std::optional<std::string> {
        Pipe pipe = openPipe(command);
        if (!pipe)
            return std::nullopt;
        std::array<char, 512> chunk{};
        std::string output;
        std::size_t count = 0;
        do {
            count = std::fread(chunk.data(), 1, chunk.size(), pipe.get());
            output.append(chunk.data(), count);
        } while (count == chunk.size());
        pipe.reset();
        if (!isAscii(output))
            return std::nullopt;
        return output;
    });
}

#include "platform/posix/CopyBytes.h"

#include <cerrno>
#include <unistd.h>
#include <vector>

namespace platform::posix {
namespace {

constexpr std::size_t kPieceBytes = std::size_t{1} << 16;

} // namespace

bool writeAll(int file, std::string_view bytes, SystemCalls& calls) {
    while (!bytes.empty()) {
        const ssize_t count = calls.write(file, bytes.data(), bytes.size());
        if (count <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

bool copyBytes(int source, int target, SystemCalls& calls) {
    std::vector<char> buffer(kPieceBytes);
    for (;;) {
        const ssize_t count = ::read(source, buffer.data(), buffer.size());
        if (count == 0)
            return true;
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0 || !writeAll(target, {buffer.data(), static_cast<std::size_t>(count)}, calls))
            return false;
    }
}

} // namespace platform::posix
